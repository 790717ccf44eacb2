// An event, and what may stand after it:
//
//   number  reel     track transition [frames]  source in   source out  record in   record out
//   002     HOLIDAY  V     D          025       00:00:10:00 00:00:12:00 01:00:04:00 01:00:06:00
//   * FROM CLIP NAME: the clip that a transition leaves, or the event's own when it is a cut
//   * TO CLIP NAME: the clip that a transition comes to, which is the event's own
//
// A transition from another reel is two events of one number, of which the first has no length.

#include "host/edl.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <utility>

#include "host/batch_list_text.h"

namespace zq::host {
namespace {

using Words = std::vector<std::string_view>;

constexpr std::size_t kTimecodes = 4;
constexpr std::size_t kFewestWords = 4 + kTimecodes;

Words wordsOf(std::string_view line) {
  Words words;
  for (line = trimmed(line); !line.empty(); line = trimmed(line)) {
    const std::size_t end = std::min(line.find_first_of(" \t"), line.size());
    words.push_back(line.substr(0, end));
    line.remove_prefix(end);
  }
  return words;
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

bool isNumber(std::string_view word) {
  return !word.empty() && std::ranges::all_of(word, isDigit);
}

bool isTrack(std::string_view word) {
  return word == "NONE" || word.find_first_not_of("AVB0123456789/") == std::string_view::npos;
}

/// What is wrong with the words between track and timecodes; "" when nothing is.
std::string wrongTransition(const Words& words) {
  const std::string_view kind = words[3];
  const std::size_t more = words.size() - kFewestWords;
  const bool isWipe = kind[0] == 'W' && (kind.size() == 1 || isNumber(kind.substr(1)));
  if (kind == "C") return more == 0 ? "" : "a cut (C) has no duration";
  if (kind == "D" || isWipe) {
    return more == 1 && isNumber(words[4]) ? "" : fmt::format("the transition {} wants one duration in frames", kind);
  }
  // A key's background (B) and its taking out (O) are transitions of their own.
  if (kind == "K") return more <= 2 ? "" : "too much stands after the key (K)";
  return fmt::format("there is no transition \"{}\", only C, D, W and K", kind);
}

/// The text after the word, or nothing.
std::optional<std::string_view> after(std::string_view word, std::string_view line) {
  if (lowered(line.substr(0, word.size())) != lowered(word)) return std::nullopt;
  return trimmed(line.substr(word.size()));
}

bool hasFourTimecodes(const Words& words) {
  return words.size() >= kTimecodes && std::all_of(words.end() - kTimecodes, words.end(),
                                                   [](std::string_view word) { return timecodeOf(word).has_value(); });
}

class EdlParser {
 public:
  void take(int line, std::string_view text) {
    line_ = line;
    if (!isPlainText(text)) return bad("its text is not UTF-8");
    const std::string_view content = trimmed(text);
    if (content.empty() || after("TITLE:", content)) return;
    if (const auto code = after("FCM:", content)) return takeFrameCode(*code);
    if (content[0] == '*') return takeComment(trimmed(content.substr(1)));
    const Words words = wordsOf(content);
    if (isDigit(content[0])) return takeEvent(words);
    // Other lines are notes to an editing machine, such as M2 for a change of speed. Four timecodes are an event's.
    if (hasFourTimecodes(words)) bad("it has the timecodes of an event, but no event number");
  }

  BatchList finish() {
    for (Event& event : events_) {
      const auto name = tapeOfReel_.find(event.row.tape);
      if (name != tapeOfReel_.end()) event.row.tape = name->second;
      list_.rows.push_back(std::move(event.row));
    }
    takeOutLengthless();
    settleRows(list_, saysDropFrame_);
    std::ranges::stable_sort(list_.leftOut, {}, &ListRemark::line);
    return std::move(list_);
  }

 private:
  struct Event {
    std::string number;
    bool isCut = true;
    BatchRow row;
  };

  void bad(std::string reason) { list_.bad.push_back({line_, std::move(reason)}); }

  void takeFrameCode(std::string_view code) {
    const std::string small = lowered(code);
    if (small.starts_with("non")) {
      dropFrame_ = false;
    } else if (small.starts_with("drop")) {
      dropFrame_ = saysDropFrame_ = true;
    } else {
      bad(fmt::format("the frame code \"{}\" is neither DROP FRAME nor NON-DROP FRAME", code));
    }
  }

  void takeComment(std::string_view comment) {
    if (const auto name = after("FROM CLIP NAME:", comment)) return takeFromName(*name);
    if (const auto name = after("TO CLIP NAME:", comment)) {
      if (!events_.empty() && !events_.back().isCut) events_.back().row.name = *name;
      return;
    }
    const auto reel = after("REEL ", comment);
    const std::size_t is = reel ? reel->find(" IS ") : std::string_view::npos;
    if (is != std::string_view::npos) tapeOfReel_[std::string(reel->substr(0, is))] = trimmed(reel->substr(is + 4));
  }

  void takeFromName(std::string_view name) {
    if (events_.empty()) return;
    Event& last = events_.back();
    const bool isSecondHalf = !last.isCut && events_.size() > 1 && events_[events_.size() - 2].number == last.number;
    (isSecondHalf ? events_[events_.size() - 2] : last).row.name = name;
  }

  void takeEvent(const Words& words) {
    Event event;
    std::string reason = readEvent(words, event);
    if (!reason.empty()) return bad(std::move(reason));
    if (event.row.tape != "BL") {
      events_.push_back(std::move(event));
    } else {
      list_.leftOut.push_back({line_, "black (reel BL) is on no tape"});
    }
  }

  std::string readEvent(const Words& words, Event& event) const {
    if (words.size() < kFewestWords) {
      return fmt::format(
          "an event has a number, a reel, a track, a transition and four timecodes, and this has {} parts",
          words.size());
    }
    if (!isTrack(words[2])) return fmt::format("there is no track \"{}\"", words[2]);
    if (std::string reason = wrongTransition(words); !reason.empty()) return reason;
    event.number = words[0];
    event.isCut = words[3] == "C";
    event.row.line = line_;
    event.row.name = words[0];
    event.row.tape = words[1];
    event.row.dropFrame = dropFrame_;
    SMPTETime record;
    for (std::size_t i = 0; i < kTimecodes; ++i) {
      constexpr const char* kNames[] = {"source in", "source out", "record in", "record out"};
      SMPTETime& timecode = i == 0 ? event.row.in : i == 1 ? event.row.out : record;
      std::string reason = readTimecode(kNames[i], words[words.size() - kTimecodes + i], timecode);
      if (!reason.empty()) return reason;
    }
    return "";
  }

  /// The first halves of transitions, which say only where it begins.
  void takeOutLengthless() {
    std::vector<BatchRow> rows;
    for (std::size_t i = 0; i < list_.rows.size(); ++i) {
      const bool isFirstHalf =
          i + 1 < events_.size() && events_[i + 1].number == events_[i].number && !events_[i + 1].isCut;
      if (isFirstHalf && list_.rows[i].in == list_.rows[i].out) {
        list_.leftOut.push_back({list_.rows[i].line, "an event without length, where a transition begins"});
      } else {
        rows.push_back(std::move(list_.rows[i]));
      }
    }
    list_.rows = std::move(rows);
  }

  int line_ = 0;
  bool dropFrame_ = false;
  bool saysDropFrame_ = false;
  std::vector<Event> events_;
  std::map<std::string, std::string> tapeOfReel_;
  BatchList list_;
};

/// The next line, taken off the front of `text` with its end.
std::string_view takeLine(std::string_view& text) {
  const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(end);
  text.remove_prefix(text.starts_with("\r\n") ? 2 : text.empty() ? 0 : 1);
  return line;
}

}  // namespace

bool looksLikeEdl(std::string_view text) {
  const std::string_view line = takeLine(text);
  if (after("TITLE:", line) || after("FCM:", line)) return true;
  const Words words = wordsOf(line);
  return words.size() >= kFewestWords && isNumber(words[0]) && hasFourTimecodes(words);
}

BatchList parseEdl(std::string_view text) {
  EdlParser parser;
  for (int line = 1; !text.empty(); ++line) parser.take(line, takeLine(text));
  return parser.finish();
}

}  // namespace zq::host
