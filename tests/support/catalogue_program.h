#pragma once
// The catalogue command as a user runs it, on a catalogue of a made-up capture.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/program.h"

namespace zq::test {

/// A clip of a session.json. Empty texts are null in it.
struct SessionClip {
  std::string date;
  std::string first;
  std::string last;
  std::string name;
};

class CatalogueProgram : public ::testing::Test {
 protected:
  using json = nlohmann::json;
  using Words = std::vector<std::string>;

  /// `deckhand catalogue ACTION --catalogue tapes.db` with these words behind it.
  ProgramResult run(const std::string& action, const Words& more = {}) {
    Words words{"catalogue", action, "--catalogue", folder / "tapes.db"};
    words.insert(words.end(), more.begin(), more.end());
    return runDeckhand(folder, words);
  }

  json runJson(const std::string& action, Words more = {}, int exitCode = 0) {
    more.emplace_back("--json");
    const ProgramResult result = run(action, more);
    EXPECT_EQ(result.exitCode, exitCode) << result.err;
    return json::parse(result.out, nullptr, false);
  }

  /// Writes NAME/session.json, as a capture of tape:TAPE.dv leaves it, without its movies.
  std::string writeSession(const std::string& name, const std::string& tape, const std::vector<SessionClip>& clips) {
    const auto text = [](const std::string& value) { return value.empty() ? json(nullptr) : json(value); };
    json list = json::array();
    for (const SessionClip& clip : clips) {
      list.push_back({{"clipId", std::to_string(list.size() + 1)},
                      {"clipRecordingDate", text(clip.date)},
                      {"clipStartTimecode", text(clip.first)},
                      {"clipEndTimecode", text(clip.last)},
                      {"clipDuration", nullptr},
                      {"clipAspectRatio", 1},
                      {"moviePath", clip.name + ".mov"},
                      {"thumbnailPath", nullptr},
                      {"movieFrames", 0},
                      {"thumbnailFrames", 0}});
    }
    std::filesystem::create_directories(folder / name);
    const std::string path = folder / (name + "/session.json");
    writeText(path, json{{"device", "tape:/tapes/" + tape + ".dv"}, {"format", "mov"}, {"clips", list}}.dump(2));
    return path;
  }

  /// Clips 1 to 4 of tape "holiday": two of the 15th, one of the 16th of July 2004, and an undated one.
  void importHoliday() {
    const ProgramResult result =
        run("import", {writeSession("clips", "holiday",
                                    {{"2004-07-15T13:30:45", "00:00:00:00", "00:00:03:24", "a"},
                                     {"2004-07-15T23:59:59", "00:00:04:00", "00:00:06:24", "b"},
                                     {"2004-07-16T00:00:00", "00:00:07:00", "00:00:11:24", "c"},
                                     {"", "00:00:12:00", "00:00:12:24", "d"}})});
    ASSERT_EQ(result.exitCode, 0) << result.err;
  }

  std::string write(const std::string& name, const std::string& text) {
    writeText(folder / name, text);
    return folder / name;
  }

  /// All clips of a tape, one after the other.
  json clipsOf(const std::string& tape) {
    json clips = json::array();
    const json shown = runJson("show", {"--tape", tape});
    for (const json& sequence : shown.at("sequences")) {
      for (const json& clip : sequence.at("clips")) clips.push_back(clip);
    }
    return clips;
  }

  /// The ids of the tape's clips of which this is true.
  json idsWith(const std::string& tape, const char* flag) {
    json ids = json::array();
    for (const json& clip : clipsOf(tape)) {
      if (clip.at(flag) == true) ids.push_back(clip.at("clipId"));
    }
    return ids;
  }

  static json ids(const std::vector<std::string>& texts) { return json(texts); }

  ProgramFolder folder;
};

}  // namespace zq::test
