#pragma once
// Tapes with pictures that can be compressed, and movies as another program sees them.

#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "support/catalogue_program.h"

namespace zq::test {

class CompressionProgram : public CatalogueProgram {
 protected:
  /// Two scenes of a second each. The test pictures of a tape script hold no picture.
  void makeTape(const std::string& system = "pal") {
    std::filesystem::remove(tapePath());
    const ProgramResult made =
        runDeckhand(folder, {"make-tape", tapePath(), "--system", system, "--scene",
                             "2004-07-15T13:30:45,1,00:00:00:00", "--scene", "2004-07-15T14:00:00,1,00:00:01:00"});
    ASSERT_EQ(made.exitCode, 0) << made.err;
  }
  std::string tapePath() const { return folder / "tape.dv"; }

  ProgramResult capture(const Words& more = {}) const {
    Words words{"capture", "--device", "tape:" + tapePath(), "--output", folder / "clips"};
    words.insert(words.end(), more.begin(), more.end());
    return runDeckhand(folder, words);
  }
  json report() const { return json::parse(readText(folder / "clips/session.json"), nullptr, false); }
  ProgramResult config(const Words& more) const {
    Words words{"config"};
    words.insert(words.end(), more.begin(), more.end());
    return runDeckhand(folder, words);
  }

  std::string settingsPath() const { return folder / "settings/Deckhand/deckhand.ini"; }
  std::string settings() const { return readText(settingsPath()); }
  /// Writes the settings file as a user with an editor would.
  void writeSettings(const std::string& lines) const {
    std::filesystem::create_directories(folder / "settings/Deckhand");
    writeText(settingsPath(), "[General]\n" + lines);
  }

  /// What another program says of the first video track: "codec,width,height,pictures".
  std::string videoOf(const std::string& movie) const {
    const RunningProgram reader(
        folder, {"ffprobe", "-v", "error", "-count_packets", "-select_streams", "v:0", "-show_entries",
                 "stream=codec_name,width,height,nb_read_packets", "-of", "csv=print_section=0", movie});
    const ProgramResult result = reader.wait();
    EXPECT_EQ(result.exitCode, 0) << result.err;
    return result.out.substr(0, result.out.find('\n'));
  }
  /// The pictures of a movie or a tape as they are seen, a line of a checksum each.
  Words picturesOf(const std::string& movie) const {
    const RunningProgram reader(folder, {"ffmpeg", "-v", "error", "-nostdin", "-i", movie, "-map", "0:v:0", "-pix_fmt",
                                         "yuv420p", "-f", "framemd5", "-"});
    const ProgramResult result = reader.wait();
    EXPECT_EQ(result.exitCode, 0) << result.err;
    Words sums;
    std::istringstream lines(result.out);
    for (std::string line; std::getline(lines, line);) {
      if (!line.starts_with('#')) sums.push_back(line.substr(line.rfind(' ') + 1));
    }
    return sums;
  }
  static Words part(const Words& all, std::size_t first, std::size_t count) {
    if (first + count > all.size()) return {};
    const auto begin = all.begin() + static_cast<std::ptrdiff_t>(first);
    return {begin, begin + static_cast<std::ptrdiff_t>(count)};
  }

  /// One message, this exit code, and nothing made.
  void expectRefused(const ProgramResult& result, int exitCode, const std::string& message) const {
    EXPECT_EQ(result.exitCode, exitCode) << result.err;
    EXPECT_NE(result.err.find(message), std::string::npos) << result.err;
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    EXPECT_EQ(result.out, "");
    EXPECT_FALSE(std::filesystem::exists(folder / "clips")) << "nothing was to be made";
  }
};

}  // namespace zq::test
