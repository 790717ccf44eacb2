#include "host/recapture_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "host/text.h"

namespace zq::host {

using nlohmann::ordered_json;

namespace {

const char* nameOf(RecapturedClip::Status status) {
  switch (status) {
    case RecapturedClip::Status::recaptured:
      return "recaptured";
    case RecapturedClip::Status::cancelled:
      return "cancelled";
    case RecapturedClip::Status::waiting:
    case RecapturedClip::Status::failed:
      break;
  }
  return "failed";
}

ordered_json clipJson(const RecapturedClip& entry) {
  ordered_json json = {{"clipId", std::to_string(entry.clip.id)},
                       {"status", nameOf(entry.status)},
                       {"moviePath", jsonOf(entry.moviePath)},
                       {"recapturePath", jsonOf(entry.recapturePath)},
                       {"movieFrames", entry.movieFrames}};
  if (!entry.reason.empty()) json["reason"] = entry.reason;
  return json;
}

}  // namespace

int RecaptureReport::count(RecapturedClip::Status status) const {
  return static_cast<int>(std::ranges::count(outcome_.clips, status, &RecapturedClip::status));
}

std::vector<std::string> RecaptureReport::failures() const {
  std::vector<std::pair<std::string, std::vector<std::string>>> reasons;
  for (const RecapturedClip& entry : outcome_.clips) {
    if (entry.status != RecapturedClip::Status::failed) continue;
    const auto known = std::ranges::find(reasons, entry.reason, [](const auto& held) { return held.first; });
    auto& ids =
        known != reasons.end() ? known->second : reasons.emplace_back(entry.reason, std::vector<std::string>()).second;
    ids.push_back(std::to_string(entry.clip.id));
  }
  std::vector<std::string> lines;
  lines.reserve(reasons.size());
  for (const auto& [reason, ids] : reasons) {
    lines.push_back(
        fmt::format("{} {} not recaptured: {}", ids.size() == 1 ? "clip" : "clips", fmt::join(ids, ", "), reason));
  }
  return lines;
}

void RecaptureReport::setCompression(std::string format, std::string name, std::vector<std::string> settings,
                                     std::string size) {
  format_ = std::move(format);
  compression_ = std::move(name);
  customCompression_ = std::move(settings);
  pictureSize_ = std::move(size);
}

ordered_json RecaptureReport::json() const {
  ordered_json clips = ordered_json::array();
  for (const RecapturedClip& entry : outcome_.clips) clips.push_back(clipJson(entry));
  ordered_json alerts = ordered_json::array();
  for (const Error& alert : outcome_.alerts) {
    alerts.push_back({{"message", alert.message}, {"informative", alert.informative}});
  }
  ordered_json report = {{"tape", tape_}, {"mode", manual_ ? "manual" : "automatic"}};
  if (!configuration_.empty()) report["configuration"] = configuration_;
  if (!compression_.empty()) {
    report["format"] = format_;
    report["compression"] = compression_;
    if (!customCompression_.empty()) {
      report["customCompression"] = customCompression_;
      report["pictureSize"] = pictureSize_;
    }
  }
  report["clips"] = clips;
  report["recaptured"] = count(RecapturedClip::Status::recaptured);
  report["failed"] = count(RecapturedClip::Status::failed);
  report["alerts"] = alerts;
  report["tapeSeconds"] = outcome_.tapeSeconds;
  if (outcome_.error) report["error"] = outcome_.error->text();
  return report;
}

void RecaptureReport::print() const {
  fmt::print("{:>5}  {:<19}  {:<11}  {:>7}  {:<10}  {}\n", "clip", "recorded", "from", "frames", "status", "file");
  for (const RecapturedClip& entry : outcome_.clips) {
    fmt::print("{:>5}  {:<19}  {:<11}  {:>7}  {:<10}  {}\n", entry.clip.id, textOf(entry.clip.recordingDate),
               textOf(entry.clip.startTimecode), entry.movieFrames, nameOf(entry.status), entry.moviePath);
  }
  fmt::print("\n{} recaptured, {} failed, {} cancelled; the deck was busy for {:.0f} s\n",
             count(RecapturedClip::Status::recaptured), count(RecapturedClip::Status::failed),
             count(RecapturedClip::Status::cancelled), outcome_.tapeSeconds);
}

}  // namespace zq::host
