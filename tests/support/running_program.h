#pragma once
// Runs a program as a user does, and keeps what it said.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "support/scratch_folder.h"

extern char** environ;  // NOLINT(readability-redundant-declaration)

namespace zq::test {

struct ProgramResult {
  int exitCode = -1;  // -signal when it was ended by one
  std::string out;
  std::string err;
};

/// A scratch folder, which is also the home of the program's settings.
class ProgramFolder : public ScratchFolder {
 public:
  ProgramFolder() { std::filesystem::create_directory(file("settings")); }

  std::string operator/(const std::string& name) const { return file(name); }
};

inline std::string readText(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline void writeText(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

/// Waits until a program has written something into the file.
inline void waitForBytes(const std::string& path) {
  std::error_code missing;
  for (std::uintmax_t size = 0; size == 0; size = missing ? 0 : size) {
    ::usleep(1000);
    size = std::filesystem::file_size(path, missing);
  }
}

/// A program that has been started.
class RunningProgram {
 public:
  RunningProgram(const ProgramFolder& folder, std::vector<std::string> words)
      : outPath_(folder / "stdout.txt"), errPath_(folder / "stderr.txt") {
    ::setenv("XDG_CONFIG_HOME", (folder / "settings").c_str(), 1);
    ::setenv("TZ", "UTC", 1);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, outPath_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errPath_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    EXPECT_EQ(::posix_spawnp(&process_, arguments[0], &actions, nullptr, arguments.data(), environ), 0) << words[0];
    posix_spawn_file_actions_destroy(&actions);
  }

  void interrupt() const { ::kill(process_, SIGINT); }
  pid_t process() const { return process_; }

  ProgramResult wait() const {
    int status = 0;
    ::waitpid(process_, &status, 0);
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    return {code, readText(outPath_), readText(errPath_)};
  }

 private:
  const std::string outPath_;
  const std::string errPath_;
  pid_t process_ = 0;
};

}  // namespace zq::test
