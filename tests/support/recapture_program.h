#pragma once
// A tape that was captured into a catalogue, and the recapture of its clips, as a user runs them.

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "support/catalogue_program.h"
#include "support/tape_script.h"

namespace zq::test {

class RecaptureProgram : public CatalogueProgram {
 protected:
  using Frames = std::vector<ScriptFrame>;

  static constexpr StampDateTime kFirst{2004, 7, 15, 13, 30, 45};
  static constexpr StampDateTime kSecond{2004, 7, 15, 14, 0, 0};
  static constexpr StampDateTime kThird{2004, 7, 16, 9, 0, 0};

  /// Three scenes of 6, 4 and 5 seconds, whose timecodes start again at zero.
  static Frames holidayFrames() {
    const SMPTETime zero = timecodeOf(0, 0, 0, 0);
    return framesOf({{150, kFirst, zero}, {100, kSecond, zero}, {125, kThird, zero}});
  }

  std::string tapePath(const std::string& tape = "holiday") const { return folder / (tape + ".dv"); }

  /// Writes tape:TAPE.dv and captures it into the catalogue as TAPE.
  void captureTape(const Frames& frames, const std::string& tape = "holiday", const Words& more = {}) {
    writeTape(tapePath(tape), frames);
    captureAgain(tape, more);
  }
  void captureAgain(const std::string& tape = "holiday", const Words& more = {}) {
    Words words{"capture",           "--device",       "tape:" + tapePath(tape),
                "--output",          folder / "clips", "--catalogue",
                folder / "tapes.db", "--tape",         tape};
    words.insert(words.end(), more.begin(), more.end());
    const ProgramResult result = runDeckhand(folder, words);
    ASSERT_TRUE(result.exitCode == 0 || result.exitCode == 3) << result.err;
  }

  void mark(const Words& clips) {
    Words words;
    for (const std::string& clip : clips) words.insert(words.end(), {"--clip", clip});
    const ProgramResult result = run("mark", words);
    ASSERT_EQ(result.exitCode, 0) << result.err;
  }
  void markAll(const std::string& tape = "holiday") {
    const ProgramResult result = run("mark", {"--tape", tape, "--all"});
    ASSERT_TRUE(result.exitCode == 0 || result.exitCode == 3) << result.err;
  }

  Words recaptureWords(const Words& more = {}, const std::string& tape = "holiday") const {
    Words words{"recapture", "--device", "tape:" + tapePath(tape), "--catalogue", folder / "tapes.db", "--tape",
                tape,        "--output", folder / "again"};
    words.insert(words.end(), more.begin(), more.end());
    return words;
  }
  ProgramResult recapture(const Words& more = {}, const std::string& tape = "holiday") const {
    return runDeckhand(folder, recaptureWords(more, tape));
  }
  json recaptureJson(Words more = {}, int exitCode = 0, const std::string& tape = "holiday") const {
    more.emplace_back("--json");
    const ProgramResult result = recapture(more, tape);
    EXPECT_EQ(result.exitCode, exitCode) << result.err << result.out;
    return json::parse(result.out, nullptr, false);
  }

  /// What the report says of a clip.
  static json entryOf(const json& report, const std::string& id) {
    for (const json& clip : report.at("clips")) {
      if (clip.at("clipId") == id) return clip;
    }
    return {};
  }
  /// What the catalogue says of a clip.
  json storedClip(const std::string& id, const std::string& tape = "holiday") {
    for (const json& clip : clipsOf(tape)) {
      if (clip.at("clipId") == id) return clip;
    }
    return {};
  }
  std::string inAgain(const json& name) const { return folder / ("again/" + name.get<std::string>()); }

  /// All names in the folder of the recaptured movies.
  Words filesOfAgain() const {
    Words names;
    if (!std::filesystem::exists(folder / "again")) return names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder / "again")) {
      names.push_back(entry.path().lexically_relative(folder / "again").string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  /// The picture packets of a movie, one after the other, as another program reads them.
  std::string picturesIn(const std::string& movie) const {
    const RunningProgram reader(folder, {"ffmpeg", "-v", "error", "-nostdin", "-y", "-i", movie, "-map", "0:v", "-c",
                                         "copy", "-f", "rawvideo", folder / "pictures.raw"});
    const ProgramResult result = reader.wait();
    EXPECT_EQ(result.exitCode, 0) << result.err;
    return readText(folder / "pictures.raw");
  }

  /// The clip was recaptured, and its movie holds these frames of the tape; its alias leads to it.
  void expectMovie(const json& report, const std::string& id, const std::string& frames) const {
    const json entry = entryOf(report, id);
    ASSERT_EQ(entry.value("status", ""), "recaptured") << report.dump(2);
    EXPECT_FALSE(entry.contains("reason")) << entry;
    const std::string movie = inAgain(entry.at("moviePath"));
    EXPECT_TRUE(picturesIn(movie) == frames) << movie << " does not hold the frames of the tape";
    EXPECT_TRUE(std::filesystem::equivalent(inAgain(entry.at("recapturePath")), movie)) << id;
  }
};

}  // namespace zq::test
