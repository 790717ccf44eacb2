#include "host/alert_list.h"

#include <mutex>
#include <string_view>

namespace zq::host {

AlertList::AlertList(platform::Runtime& runtime, Console& console)
    : console_(console), mutex_(runtime.makeMutex("alerts")) {}

int AlertList::runModal(const std::string& messageText, const std::string& informativeText) {
  const bool isSentence =
      !messageText.empty() && std::string_view(".!?").find(messageText.back()) != std::string_view::npos;
  console_.notice(messageText + (isSentence ? " " : ": ") + informativeText);
  const std::lock_guard guard(*mutex_);
  shown_.push_back({messageText, informativeText});
  return kDefaultButton;
}

std::vector<Error> AlertList::shown() const {
  const std::lock_guard guard(*mutex_);
  return shown_;
}

}  // namespace zq::host
