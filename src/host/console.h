#pragma once
// What the command line says on standard error: log, alerts and messages, each line whole.

#include <memory>
#include <string>
#include <string_view>

#include "base/log.h"
#include "base/status.h"
#include "platform/alerts.h"
#include "platform/strings.h"

namespace spdlog {
class logger;
}

namespace zq::host {

/// From any thread.
class Console : public Log, public platform::Alerts {
 public:
  /// With `verbose`, information is told too, not only warnings and errors.
  explicit Console(bool verbose);
  ~Console() override;

  void write(LogLevel level, std::string_view message) override;
  /// A terminal has nothing to answer with, so the alert is told and counted.
  int runModal(const std::string& messageText, const std::string& informativeText) override;
  int alerts() const;

  void error(const Error& error);
  void warning(const std::string& message);
  /// Always told, and nothing to worry about.
  void notice(const std::string& message);

 private:
  const std::shared_ptr<spdlog::logger> logger_;
  struct State;
  const std::unique_ptr<State> state_;
};

/// The texts as they stand; translations come with the windows.
class PlainStrings : public platform::Strings {
 public:
  std::string localizedString(const std::string& key, const std::string& /*table*/) const override { return key; }
};

}  // namespace zq::host
