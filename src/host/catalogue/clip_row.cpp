#include "host/catalogue/clip_row.h"

#include <QByteArray>
#include <array>
#include <charconv>
#include <limits>
#include <optional>
#include <string_view>

#include "timecode/timecode_text.h"

namespace zq::host {
namespace {

enum Column : int {
  kId,
  kName,
  kRecordingDate,
  kStartTimecode,
  kStartSystem,
  kEndTimecode,
  kEndSystem,
  kDuration,
  kDurationSystem,
  kTimebase,
  kAspectRatio,
  kMoviePath,
  kThumbnailPath,
  kMovieFrames,
  kThumbnailFrames,
  kMarked,
  kRecaptured,
  kTrashed,
  kRecapturedPath,
};

constexpr char kColumnsWithoutId[] =
    "name, recording_date, start_timecode, start_system, end_timecode, end_system, duration, duration_system, "
    "timebase, aspect_ratio, movie_path, thumbnail_path, movie_frames, thumbnail_frames, marked, recaptured, trashed, "
    "recaptured_path";

const QVariant kNullText{QMetaType(QMetaType::QString)};
const QVariant kNullNumber{QMetaType(QMetaType::LongLong)};

QVariant number(std::int64_t value) {
  return QVariant(static_cast<qlonglong>(value));
}

QVariant dateValue(const DateValue& date) {
  return date ? QVariant(QString::fromStdString(date->isoString())) : kNullText;
}

QVariant timecodeValue(const std::optional<SMPTETime>& timecode) {
  return timecode ? QVariant(QString::fromStdString(timecodeText(*timecode))) : kNullText;
}

QVariant systemValue(const std::optional<SMPTETime>& timecode) {
  return timecode ? number(timecode->mType) : kNullNumber;
}

/// The whole numbers of a text that has exactly these separators between them. The first number may be negative, and
/// so may the others where `signs` is true.
template <std::size_t kCount>
std::optional<std::array<int, kCount>> numbersOf(std::string_view text, std::string_view separators) {
  std::array<int, kCount> numbers{};
  for (std::size_t index = 0; index < kCount; ++index) {
    const char* const end = text.data() + text.size();
    const auto [rest, failed] = std::from_chars(text.data(), end, numbers.at(index));
    if (failed != std::errc()) return std::nullopt;
    text = std::string_view(rest, static_cast<std::size_t>(end - rest));
    if (index + 1 == kCount) break;
    if (text.empty() || text.front() != separators[index]) return std::nullopt;
    text.remove_prefix(1);
  }
  if (!text.empty()) return std::nullopt;
  return numbers;
}

[[noreturn]] void failUnread(const CatalogueStatement& row, const std::string& where, const std::string& what,
                             Column column) {
  throw CatalogueFailure{{"The catalogue " + where + " cannot be read at clip " + row.text(kId),
                          "Its " + what + " is \"" + row.text(column) + "\", which is none. Correct it there."}};
}

DateValue readDate(const CatalogueStatement& row, const std::string& where) {
  if (row.value(kRecordingDate).isNull()) return nullptr;
  const auto fields = numbersOf<6>(row.text(kRecordingDate), "--T::");
  if (!fields) failUnread(row, where, "recording date", kRecordingDate);
  return std::make_shared<const CalendarDate>(CalendarDate::ofFields(*fields));
}

std::optional<SMPTETime> readTimecode(const CatalogueStatement& row, const std::string& where, const std::string& what,
                                      Column text, Column system) {
  if (row.value(text).isNull()) return std::nullopt;
  const auto fields = numbersOf<4>(row.text(text), ":::");
  if (!fields) failUnread(row, where, what, text);
  SMPTETime timecode;
  timecode.mType = static_cast<std::uint32_t>(row.integer(system));
  const std::array<std::int16_t*, 4> parts{&timecode.mHours, &timecode.mMinutes, &timecode.mSeconds, &timecode.mFrames};
  for (std::size_t index = 0; index < parts.size(); ++index) {
    const int field = fields->at(index);
    if (field < std::numeric_limits<std::int16_t>::min() || field > std::numeric_limits<std::int16_t>::max()) {
      failUnread(row, where, what, text);
    }
    *parts.at(index) = static_cast<std::int16_t>(field);
  }
  return timecode;
}

QString insertStatement() {
  QString marks = QStringLiteral("?, ?");
  for (int column = kName; column <= kRecapturedPath; ++column) marks += QStringLiteral(", ?");
  return QStringLiteral("INSERT INTO clips (sequence_id, position, ") + QLatin1String(kColumnsWithoutId) +
         QStringLiteral(") VALUES (") + marks + QStringLiteral(") RETURNING id");
}

}  // namespace

QString clipColumns() {
  return QStringLiteral("clips.id, clips.") +
         QString::fromLatin1(kColumnsWithoutId).replace(QStringLiteral(", "), QStringLiteral(", clips."));
}

ClipWriter::ClipWriter(CatalogueConnection& connection)
    : clip_(connection, insertStatement()),
      poster_(connection, QStringLiteral("INSERT INTO posters (clip_id, picture) VALUES (?, ?)")) {}

std::int64_t ClipWriter::write(const CatalogueClip& clip, std::int64_t sequence, std::int64_t position) {
  const std::string ofClip = " of clip " + std::to_string(position + 1);
  clip_.run(number(sequence), number(position), storable(clip.name, "The name" + ofClip), dateValue(clip.recordingDate),
            timecodeValue(clip.startTimecode), systemValue(clip.startTimecode), timecodeValue(clip.endTimecode),
            systemValue(clip.endTimecode), timecodeValue(clip.duration), systemValue(clip.duration),
            number(clip.timebase), number(clip.aspectRatio), storable(clip.moviePath, "The movie path" + ofClip),
            storable(clip.thumbnailPath, "The thumbnail path" + ofClip), number(clip.movieFrames),
            number(clip.thumbnailFrames), number(clip.marked ? 1 : 0), number(clip.recaptured ? 1 : 0),
            number(clip.trashed ? 1 : 0), storable(clip.recapturedPath, "The recaptured movie's path" + ofClip));
  clip_.next();
  const std::int64_t id = clip_.integer(0);
  if (!clip.poster.empty()) poster_.run(number(id), bytesValue(clip.poster));
  return id;
}

CatalogueClip readClip(const CatalogueStatement& row, const std::string& where) {
  CatalogueClip clip;
  clip.id = row.integer(kId);
  clip.name = row.text(kName);
  clip.recordingDate = readDate(row, where);
  clip.startTimecode = readTimecode(row, where, "start timecode", kStartTimecode, kStartSystem);
  clip.endTimecode = readTimecode(row, where, "end timecode", kEndTimecode, kEndSystem);
  clip.duration = readTimecode(row, where, "duration", kDuration, kDurationSystem);
  clip.timebase = static_cast<int>(row.integer(kTimebase));
  clip.aspectRatio = static_cast<std::int32_t>(row.integer(kAspectRatio));
  clip.moviePath = row.text(kMoviePath);
  clip.thumbnailPath = row.text(kThumbnailPath);
  clip.movieFrames = row.integer(kMovieFrames);
  clip.thumbnailFrames = row.integer(kThumbnailFrames);
  clip.marked = row.integer(kMarked) != 0;
  clip.recaptured = row.integer(kRecaptured) != 0;
  clip.trashed = row.integer(kTrashed) != 0;
  clip.recapturedPath = row.text(kRecapturedPath);
  return clip;
}

QVariant bytesValue(const std::vector<std::uint8_t>& bytes) {
  return QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size()));
}

std::vector<std::uint8_t> bytesOf(const QVariant& value) {
  const QByteArray bytes = value.toByteArray();
  return {bytes.begin(), bytes.end()};
}

}  // namespace zq::host
