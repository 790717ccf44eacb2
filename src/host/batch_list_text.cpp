#include "host/batch_list_text.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace zq::host {
namespace {

constexpr std::uintmax_t kLargestList{64 << 20};
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kBlanks = " \t\r\n\v\f";

/// Takes off the front a number of `fewest` to `most` digits; nothing when there are fewer.
std::optional<int> takeNumber(std::string_view& text, std::size_t fewest, std::size_t most) {
  std::size_t digits = 0;
  while (digits < text.size() && digits < most && text[digits] >= '0' && text[digits] <= '9') ++digits;
  if (digits < fewest) return std::nullopt;
  int number = 0;
  std::from_chars(text.data(), text.data() + digits, number);
  text.remove_prefix(digits);
  return number;
}

bool takeOneOf(std::string_view& text, std::string_view characters) {
  if (text.empty() || characters.find(text[0]) == std::string_view::npos) return false;
  text.remove_prefix(1);
  return true;
}

/// How many bytes the character at the front has; 0 when it is none of UTF-8.
//
//   bytes  first      second
//   1      01..7F
//   2      C2..DF     80..BF
//   3      E0         A0..BF   (less would fit into two)
//          E1..EF     80..BF   (ED: 80..9F, the rest are halves of UTF-16 pairs)
//   4      F0         90..BF   (less would fit into three)
//          F1..F4     80..BF   (F4: 80..8F, the rest is past the last character)
std::size_t characterSize(std::string_view text) {
  const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
  const unsigned first = byte(0);
  if (first < 0x80) return first == 0 ? 0 : 1;
  if (first < 0xC2 || first > 0xF4) return 0;
  const std::size_t size = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  if (text.size() < size) return 0;
  const unsigned least = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
  const unsigned most = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
  if (byte(1) < least || byte(1) > most) return 0;
  for (std::size_t at = 2; at < size; ++at) {
    if ((byte(at) & 0xC0) != 0x80) return 0;
  }
  return size;
}

}  // namespace

Expected<std::string> readListFile(const std::string& path) {
  const Error cannot{"Cannot read the list " + path, ""};
  std::error_code failed;
  if (std::filesystem::is_directory(path, failed)) {
    return Error{cannot.message, "It is a folder; a capture's report in it is called session.json."};
  }
  std::ifstream file(path, std::ios::binary);
  if (!file) return Error{cannot.message, std::strerror(errno)};
  const std::uintmax_t size = std::filesystem::file_size(path, failed);
  if (!failed && size > kLargestList) return Error{cannot.message, "It is too large to be a list."};
  std::string text(std::istreambuf_iterator<char>(file), {});
  if (file.bad()) return Error{cannot.message, std::strerror(errno)};
  if (text.starts_with(kByteOrderMark)) text.erase(0, kByteOrderMark.size());
  return text;
}

bool isPlainText(std::string_view text) {
  while (!text.empty()) {
    const std::size_t size = characterSize(text);
    if (size == 0) return false;
    text.remove_prefix(size);
  }
  return true;
}

std::string_view trimmed(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

std::string lowered(std::string_view text) {
  std::string small(text);
  for (char& c : small) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return small;
}

std::optional<SMPTETime> timecodeOf(std::string_view text) {
  std::array<std::int16_t, 4> numbers{};
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    if (i > 0 && !takeOneOf(text, i == 3 ? ":;." : ":")) return std::nullopt;
    const auto number = takeNumber(text, 1, 4);
    if (!number) return std::nullopt;
    numbers.at(i) = static_cast<std::int16_t>(*number);
  }
  if (!text.empty()) return std::nullopt;
  SMPTETime timecode;
  timecode.mHours = numbers[0];
  timecode.mMinutes = numbers[1];
  timecode.mSeconds = numbers[2];
  timecode.mFrames = numbers[3];
  return timecode;
}

DateValue dateOf(std::string_view text) {
  std::array<int, 6> fields{};
  constexpr std::array<std::string_view, 6> kBefore{"", "-", "-", "T", ":", ":"};
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (i > 0 && !takeOneOf(text, kBefore.at(i))) return nullptr;
    const std::size_t digits = i == 0 ? 4 : 2;
    const auto number = takeNumber(text, digits, digits);
    if (!number) return nullptr;
    fields.at(i) = *number;
  }
  const auto [year, month, day, hour, minute, second] = fields;
  const std::chrono::year_month_day calendarDay{std::chrono::year{year},
                                                std::chrono::month{static_cast<unsigned>(month)},
                                                std::chrono::day{static_cast<unsigned>(day)}};
  if (!text.empty() || !calendarDay.ok() || hour > 23 || minute > 59 || second > 59) return nullptr;
  return std::make_shared<const CalendarDate>(year, month, day, hour, minute, second);
}

std::int64_t framesTo(const SMPTETime& timecode, int timebase) {
  const std::int64_t seconds =
      std::int64_t{timecode.mHours} * 3600 + std::int64_t{timecode.mMinutes} * 60 + timecode.mSeconds;
  return seconds * timebase + timecode.mFrames;
}

SMPTETime timecodeAt(std::int64_t frames, int timebase) {
  const std::int64_t seconds = frames / timebase;
  SMPTETime timecode;
  timecode.mType = timebase == 25 ? 1 : 2;
  timecode.mHours = static_cast<std::int16_t>(seconds / 3600);
  timecode.mMinutes = static_cast<std::int16_t>(seconds / 60 % 60);
  timecode.mSeconds = static_cast<std::int16_t>(seconds % 60);
  timecode.mFrames = static_cast<std::int16_t>(frames % timebase);
  return timecode;
}

}  // namespace zq::host
