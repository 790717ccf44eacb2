#include "platform/settings.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace zq::platform {
namespace {

/// The number that the text begins with, whatever the locale; 0 when it begins with none.
double numberFromText(const std::string& text) {
  const std::size_t start = text.find_first_not_of(" \t\n+");
  if (start == std::string::npos) return 0;
  double number = 0;
  const auto parsed = std::from_chars(text.data() + start, text.data() + text.size(), number);
  return parsed.ec != std::errc() || std::isnan(number) ? 0 : number;
}

double numberFrom(const SettingValue& value) {
  if (const bool* flag = std::get_if<bool>(&value)) return *flag ? 1 : 0;
  if (const std::int64_t* integer = std::get_if<std::int64_t>(&value)) return static_cast<double>(*integer);
  if (const double* real = std::get_if<double>(&value)) return std::isnan(*real) ? 0 : *real;
  if (const std::string* text = std::get_if<std::string>(&value)) return numberFromText(*text);
  return 0;
}

bool startsLikeYes(const std::string& text) {
  return !text.empty() && std::string("YyTt123456789").find(text.front()) != std::string::npos;
}

}  // namespace

bool boolFrom(const SettingValue& value) {
  if (const std::string* text = std::get_if<std::string>(&value)) return startsLikeYes(*text);
  return numberFrom(value) != 0;
}

int integerFrom(const SettingValue& value) {
  using Limits = std::numeric_limits<int>;
  return static_cast<int>(std::clamp<double>(numberFrom(value), Limits::min(), Limits::max()));
}

bool Settings::boolForKey(const std::string& key) const {
  const std::optional<SettingValue> value = objectForKey(key);
  return value && boolFrom(*value);
}

int Settings::integerForKey(const std::string& key) const {
  const std::optional<SettingValue> value = objectForKey(key);
  return value ? integerFrom(*value) : 0;
}

float Settings::floatForKey(const std::string& key) const {
  const std::optional<SettingValue> value = objectForKey(key);
  return value ? static_cast<float>(numberFrom(*value)) : 0.0F;
}

std::string Settings::stringForKey(const std::string& key) const {
  const std::optional<SettingValue> value = objectForKey(key);
  if (!value) return "";
  const std::string* text = std::get_if<std::string>(&*value);
  return text ? *text : "";
}

}  // namespace zq::platform
