#include "host/note_log.h"

#include <mutex>
#include <utility>

namespace zq::host {

NoteLog::NoteLog(platform::Runtime& runtime, Log& log) : log_(log), mutex_(runtime.makeMutex("note log")) {}

void NoteLog::setStringValue(const std::string& text) {
  const std::lock_guard guard(*mutex_);
  if (text.empty() || text == last_ || text == lastButOne_) return;
  lastButOne_ = std::exchange(last_, text);
  log_.write(LogLevel::info, text);
}

}  // namespace zq::host
