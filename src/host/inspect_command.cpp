#include "host/inspect_command.h"

#include <fmt/format.h>

#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>
#include <vector>

#include "backends/time/real_runtime.h"
#include "base/calendar_date.h"
#include "base/digits.h"
#include "dv/dv_constants.h"
#include "host/exit_codes.h"
#include "host/scene_list.h"
#include "host/tape_inspector.h"
#include "host/text.h"
#include "timecode/timecode_text.h"

namespace zq::host {
namespace {

using nlohmann::ordered_json;

constexpr char kFrameHeader[] = "frame,offset,system,timecode,recordingDate,aspectRatio\n";
constexpr char kSceneHeader[] = "firstFrame,frames,startTimecode,endTimecode,recordingDate,aspectRatio\n";

/// The texts of dates. A frame mostly has the date of the one before it.
class DateTexts {
 public:
  const std::string& of(const CalendarDate& date) {
    if (!last_ || *last_ != date) text_ = date.isoString();
    last_ = date;
    return text_;
  }

 private:
  std::optional<CalendarDate> last_;
  std::string text_;
};

std::string frameRows(std::span<const FrameRecord> records) {
  DateTexts dates;
  std::string rows;
  rows.reserve(records.size() * 80);
  for (const FrameRecord& record : records) {
    appendDigits(rows, record.frame, 1);
    rows += ',';
    appendDigits(rows, static_cast<std::int64_t>(record.offset), 1);
    rows += ',';
    rows += nameOf(record.system);
    rows += ',';
    if (record.timecode) appendTimecodeText(rows, *record.timecode);
    rows += ',';
    if (record.recordingDate) rows += dates.of(*record.recordingDate);
    rows += ',';
    appendDigits(rows, record.aspectRatio, 1);
    rows += '\n';
  }
  return rows;
}

std::string frameJson(const FrameRecord& record) {
  const ordered_json frame = {{"frame", record.frame},
                              {"offset", record.offset},
                              {"system", nameOf(record.system)},
                              {"timecode", jsonOf(textOf(record.timecode))},
                              {"recordingDate", jsonOf(textOf(record.recordingDate))},
                              {"aspectRatio", record.aspectRatio}};
  return frame.dump();
}

/// Rows of a JSON list, each but the very first with a comma before it.
std::string frameJsonRows(std::span<const FrameRecord> records) {
  std::string rows;
  for (const FrameRecord& record : records) rows += (record.frame == 0 ? "\n    " : ",\n    ") + frameJson(record);
  return rows;
}

ordered_json sceneJson(const TapeScene& scene) {
  return {{"firstFrame", scene.firstFrame},
          {"frames", scene.frames},
          {"startTimecode", jsonOf(textOf(scene.startTimecode))},
          {"endTimecode", jsonOf(textOf(scene.endTimecode))},
          {"recordingDate", jsonOf(textOf(scene.recordingDate))},
          {"aspectRatio", scene.aspectRatio}};
}

/// One run over a tape, with what it adds up to.
class Inspection {
 public:
  Inspection(const InspectOptions& options, DVSystem system) : options_(options), system_(system) {}

  std::string format(std::span<const FrameRecord> records) const {
    if (!options_.frames) return "";
    return options_.json ? frameJsonRows(records) : frameRows(records);
  }

  void take(std::span<const FrameRecord> records, const std::string& rows) {
    std::fwrite(rows.data(), 1, rows.size(), stdout);
    for (const FrameRecord& record : records) {
      findings.add(record.facts);
      if (record.system != system_) mixed_ = true;
      ++frames_;
      if (!options_.frames || options_.json) scenes_.add(record);
    }
  }

  void printHeader() const {
    if (options_.frames) std::fputs(options_.json ? "{\n  \"frameList\": [" : kFrameHeader, stdout);
  }

  void printResult() const {
    if (options_.json) return printJson();
    if (options_.frames) return;
    if (options_.csv) return printSceneRows();
    printSceneTable();
  }

  TapeFindings findings;

 private:
  std::string systemText() const { return std::string(nameOf(system_)); }

  void printJson() const {
    ordered_json scenes = ordered_json::array();
    for (const TapeScene& scene : scenes_.scenes()) scenes.push_back(sceneJson(scene));
    const ordered_json out = {{"file", options_.tape},
                              {"system", systemText()},
                              {"frames", frames_},
                              {"trailingBytes", findings.trailingBytes()},
                              {"scenes", scenes}};
    const std::string text = out.dump(2, ' ', false, ordered_json::error_handler_t::replace);
    // The frames went out as they were read, however many there are, so the rest follows in the same object.
    fmt::print("{}\n", options_.frames ? "\n  ]," + text.substr(1) : text);
  }

  void printSceneRows() const {
    std::fputs(kSceneHeader, stdout);
    for (const TapeScene& scene : scenes_.scenes()) {
      fmt::print("{},{},{},{},{},{}\n", scene.firstFrame, scene.frames, textOf(scene.startTimecode),
                 textOf(scene.endTimecode), textOf(scene.recordingDate), scene.aspectRatio);
    }
  }

  void printSceneTable() const {
    fmt::print("{}: {}{}, {}, {}\n\n", options_.tape, systemText(), mixed_ ? " (changes on the way)" : "",
               counted(frames_, "frame"), counted(static_cast<std::int64_t>(scenes_.scenes().size()), "scene"));
    fmt::print("{:>5}  {:>8}  {:>7}  {:<11}  {:<11}  {:<19}  {}\n", "scene", "frame", "frames", "from", "to",
               "recorded", "aspect");
    int number = 0;
    for (const TapeScene& scene : scenes_.scenes()) {
      fmt::print("{:>5}  {:>8}  {:>7}  {:<11}  {:<11}  {:<19}  {}\n", ++number, scene.firstFrame, scene.frames,
                 textOf(scene.startTimecode), textOf(scene.endTimecode), textOf(scene.recordingDate),
                 DVAspectRatioNameForRatio(scene.aspectRatio));
    }
  }

  const InspectOptions& options_;
  const DVSystem system_;
  std::int64_t frames_ = 0;
  bool mixed_ = false;
  SceneList scenes_;
};

/// Otherwise each conversion of a date looks on the disk whether the system's time zone has changed.
void nameTheTimeZone() {
  constexpr int kKeepAnother = 0;
  ::setenv("TZ", ":/etc/localtime", kKeepAnother);
}

}  // namespace

int runInspect(const InspectOptions& options, Console& console) {
  nameTheTimeZone();
  backend::RealRuntime runtime;
  auto inspector = TapeInspector::open(options.tape, runtime);
  if (!inspector.ok()) {
    console.error(inspector.error());
    return kExitFailed;
  }
  Inspection inspection(options, inspector.value()->system());
  inspection.printHeader();
  const Status status = inspector.value()->run(
      [&](std::span<const FrameRecord> records) { return inspection.format(records); },
      [&](std::span<const FrameRecord> records, const std::string& rows) { inspection.take(records, rows); });
  inspection.findings.setTrailingBytes(inspector.value()->trailingBytes());
  inspection.printResult();
  if (!status.ok()) {
    console.error(status.error());
    return kExitFailed;
  }
  const std::vector<std::string> findings = inspection.findings.lines();
  for (const std::string& line : findings) console.warning(options.tape + ": " + line);
  return findings.empty() ? kExitOk : kExitFindings;
}

}  // namespace zq::host
