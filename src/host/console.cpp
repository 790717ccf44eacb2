#include "host/console.h"

#include <fmt/format.h>
#include <spdlog/logger.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>

namespace zq::host {

struct Console::State {
  std::atomic<int> alerts{0};
};

Console::Console(bool verbose)
    : logger_(std::make_shared<spdlog::logger>("deckhand", std::make_shared<spdlog::sinks::stderr_sink_mt>())),
      state_(std::make_unique<State>()) {
  logger_->set_pattern("deckhand: %l: %v");
  logger_->set_level(verbose ? spdlog::level::info : spdlog::level::warn);
}

Console::~Console() = default;

void Console::write(LogLevel level, std::string_view message) {
  switch (level) {
    case LogLevel::info:
      return logger_->info(message);
    case LogLevel::warning:
      return logger_->warn(message);
    case LogLevel::error:
      return logger_->error(message);
  }
}

int Console::runModal(const std::string& messageText, const std::string& informativeText) {
  ++state_->alerts;
  error({messageText, informativeText});
  return kDefaultButton;
}

int Console::alerts() const {
  return state_->alerts;
}

void Console::error(const Error& error) {
  logger_->error(error.text());
}

void Console::notice(const std::string& message) {
  // Over what stands in the line of a terminal.
  const std::string clear = ::isatty(STDERR_FILENO) != 0 ? "\r\033[K" : "";
  fmt::print(stderr, "{}", clear + "deckhand: " + message + "\n");
}

void Console::warning(const std::string& message) {
  logger_->warn(message);
}

}  // namespace zq::host
