#include "backends/qt/qt_settings.h"

#include <QByteArray>
#include <QLocale>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <algorithm>
#include <cstdint>
#include <mutex>
#include <utility>
#include <variant>

#include "platform/runtime.h"

// How a value stands in the file, which keeps texts and byte arrays apart but nothing else:
//
//   bool     key=true
//   integer  key=42
//   double   key=0.5         with a point or an exponent even when it is whole: key=3.0
//   string   key=Holiday     or, when that would read as another kind or is not UTF-8, key=text:%34%32
//   bytes    key=@ByteArray(...)
//
// Each operation opens the file anew, as Qt means it to be used from several threads: the text is parsed again only
// when the file changed, and nothing is left for an event loop to write later on another thread.

namespace zq::backend {
namespace {

using platform::SettingValue;

constexpr char kTextPrefix[] = "text:";

QString asQString(const std::string& text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QByteArray asQByteArray(const std::string& text) {
  return {text.data(), static_cast<qsizetype>(text.size())};
}

// In the file's keys a slash (and the backslash, for it) divides groups, so both are written as %2F and %5C, as is
// every byte that is not printable ASCII. "%" alone, which no encoded key is, stands for the empty key.
QString storedKey(const std::string& key) {
  if (key.empty()) return QStringLiteral("%");
  return QString::fromLatin1(asQByteArray(key).toPercentEncoding(" !\"#$&'()*+,:;<=>?@[]^`{|}"));
}

SettingValue valueFromText(const QString& text) {
  if (text == QLatin1String("true")) return true;
  if (text == QLatin1String("false")) return false;
  if (text.startsWith(QLatin1String(kTextPrefix))) {
    const QByteArray encoded = text.sliced(static_cast<qsizetype>(sizeof kTextPrefix) - 1).toLatin1();
    return QByteArray::fromPercentEncoding(encoded).toStdString();
  }
  bool isNumber = false;
  if (const qlonglong integer = text.toLongLong(&isNumber); isNumber) return std::int64_t{integer};
  if (const double real = text.toDouble(&isNumber); isNumber) return real;
  return text.toStdString();
}

QString textFromDouble(double value) {
  QString text = QString::number(value, 'g', QLocale::FloatingPointShortest);
  bool isInteger = false;
  text.toLongLong(&isInteger);
  return isInteger ? text + QLatin1String(".0") : text;
}

QString textFromString(const std::string& value) {
  QString plain = asQString(value);
  if (valueFromText(plain) == SettingValue(value)) return plain;
  return QLatin1String(kTextPrefix) + QString::fromLatin1(asQByteArray(value).toPercentEncoding());
}

struct ToStored {
  QVariant operator()(bool value) const { return value ? QStringLiteral("true") : QStringLiteral("false"); }
  QVariant operator()(std::int64_t value) const { return QString::number(value); }
  QVariant operator()(double value) const { return textFromDouble(value); }
  QVariant operator()(const std::string& value) const { return textFromString(value); }
  QVariant operator()(const std::vector<std::uint8_t>& value) const {
    return QByteArray(reinterpret_cast<const char*>(value.data()), static_cast<qsizetype>(value.size()));
  }
};

SettingValue valueFromStored(const QVariant& stored) {
  if (stored.typeId() == QMetaType::QByteArray) {
    const QByteArray bytes = stored.toByteArray();
    return std::vector<std::uint8_t>(bytes.begin(), bytes.end());
  }
  // A comma that was written by hand, without quotes, made a list of the text.
  if (stored.typeId() == QMetaType::QStringList) return stored.toStringList().join(QLatin1String(", ")).toStdString();
  return valueFromText(stored.toString());
}

Status statusOf(const QSettings& store) {
  const std::string path = store.fileName().toStdString();
  switch (store.status()) {
    case QSettings::NoError:
      return {};
    case QSettings::AccessError:
      return Error{"The settings could not be written to " + path,
                   "Deckhand may not write there, or the disk is full. Changes hold until the program ends."};
    case QSettings::FormatError:
      return Error{
          "The settings in " + path + " could not be read in full",
          "A damaged line of it is left out, and lost with the next change. Correct it before, if it matters."};
  }
  return {};
}

// All of the file is parsed at once, so that status() tells what is wrong with it.
std::unique_ptr<const QSettings> openedFile(const QString& path) {
  auto file = std::make_unique<const QSettings>(path, QSettings::IniFormat);
  static_cast<void>(file->allKeys());
  return file;
}

QString userPath() {
  return QSettings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("Deckhand"), QStringLiteral("deckhand"))
      .fileName();
}

}  // namespace

QtSettings::QtSettings(platform::Runtime& runtime) : QtSettings(runtime, userPath().toStdString()) {}

QtSettings::QtSettings(platform::Runtime& runtime, const std::string& path)
    : mutex_(runtime.makeMutex("settings")),
      keeper_(openedFile(asQString(path))),
      observers_(*mutex_),
      lastError_(statusOf(*keeper_)) {}

QtSettings::~QtSettings() = default;

std::optional<SettingValue> QtSettings::objectForKey(const std::string& key) const {
  const std::lock_guard guard(*mutex_);
  const QSettings store(keeper_->fileName(), QSettings::IniFormat);
  const QVariant stored = store.value(storedKey(key));
  if (!stored.isValid()) return std::nullopt;
  return valueFromStored(stored);
}

void QtSettings::setObjectForKey(const std::string& key, SettingValue value) {
  {
    const std::lock_guard guard(*mutex_);
    QSettings store(keeper_->fileName(), QSettings::IniFormat);
    store.setValue(storedKey(key), std::visit(ToStored{}, value));
    store.sync();
    lastError_ = statusOf(store);
  }
  observers_.tell(key);
}

void QtSettings::removeObjectForKey(const std::string& key) {
  {
    const std::lock_guard guard(*mutex_);
    QSettings store(keeper_->fileName(), QSettings::IniFormat);
    if (!store.contains(storedKey(key))) return;
    store.remove(storedKey(key));
    store.sync();
    lastError_ = statusOf(store);
  }
  observers_.tell(key);
}

platform::Observation QtSettings::observe(std::vector<std::string> keys,
                                          std::function<void(const std::string& key)> changed) {
  return observers_.add(std::move(keys), std::move(changed));
}

Status QtSettings::lastError() const {
  const std::lock_guard guard(*mutex_);
  return lastError_;
}

std::string QtSettings::path() const {
  return keeper_->fileName().toStdString();
}

}  // namespace zq::backend
