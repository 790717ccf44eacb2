#include "host/stored_configuration.h"

#include <algorithm>
#include <utility>

#include "host/text.h"

namespace zq::host {
namespace {

/// Those of ASCII, and U+0080 to U+009F, which are two bytes: 0xC2 and one from 0x80 on.
bool hasControlCharacters(const std::string& text) {
  unsigned char before = 0;
  for (const char letter : text) {
    const auto byte = static_cast<unsigned char>(letter);
    if (byte < 0x20 || byte == 0x7F || (before == 0xC2 && byte < 0xA0)) return true;
    before = byte;
  }
  return false;
}

}  // namespace

Status checkConfigurationName(const std::string& name) {
  if (name.find_first_not_of(' ') == std::string::npos) {
    return Error{"A configuration needs a name", "Give it one, as in: deckhand config save archive."};
  }
  if (!isUtf8(name) || hasControlCharacters(name)) {
    return Error{"The name of a configuration has characters that cannot be shown",
                 "Use letters, digits, blanks and punctuation, in UTF-8."};
  }
  return {};
}

const StoredConfiguration* findConfiguration(const std::vector<StoredConfiguration>& all, const std::string& name) {
  const auto found = std::ranges::find(all, name, &StoredConfiguration::name);
  return found == all.end() ? nullptr : &*found;
}

void putConfiguration(std::vector<StoredConfiguration>& all, StoredConfiguration added) {
  const auto found = std::ranges::find(all, added.name(), &StoredConfiguration::name);
  if (found == all.end()) {
    all.push_back(std::move(added));
  } else {
    *found = std::move(added);
  }
}

}  // namespace zq::host
