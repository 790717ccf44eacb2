#pragma once
// A PostgreSQL server of the test program's own: in a scratch folder, on a socket there, gone with the program.

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/scratch_folder.h"

namespace zq::test {

/// The folder of the newest server that is installed; empty without one.
inline std::string postgresqlPrograms() {
  std::vector<std::string> found;
  std::error_code failed;
  for (const auto& version : std::filesystem::directory_iterator("/usr/lib/postgresql", failed)) {
    const std::filesystem::path programs = version.path() / "bin";
    if (std::filesystem::exists(programs / "postgres", failed)) found.push_back(programs.string());
  }
  return found.empty() ? "" : *std::max_element(found.begin(), found.end());
}

/// A running server. It refuses to run as root, so root runs it as somebody else.
class PostgresqlServer {
 public:
  explicit PostgresqlServer(const std::string& programs) {
    if (::geteuid() == 0) {
      const passwd* user = ::getpwnam("postgres") != nullptr ? ::getpwnam("postgres") : ::getpwnam("nobody");
      if (user == nullptr) throw std::runtime_error("there is neither a user postgres nor a user nobody");
      user_ = user->pw_uid;
      group_ = user->pw_gid;
      if (::chown(folder_.path().c_str(), user_, group_) != 0) throw std::runtime_error("chown failed");
    }
    const std::string data = folder_.file("data");
    const pid_t initdb = started({programs + "/initdb", "-D", data, "-U", "deckhand", "-A", "trust", "-E", "UTF8",
                                  "--locale=C.UTF-8", "--no-sync"},
                                 -1);
    int status = 0;
    ::waitpid(initdb, &status, 0);
    if (status != 0) throw std::runtime_error("initdb failed");

    std::array<int, 2> pipe{};
    if (::pipe2(pipe.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    process_ = started({programs + "/postgres", "-D", data, "-k", folder_.path(), "-h", "", "-F", "-c",
                        "shared_buffers=16MB", "-c", "logging_collector=off"},
                       pipe[1]);
    ::close(pipe[1]);
    const bool ready = saysThatItIsReady(pipe[0]);
    ::close(pipe[0]);
    if (!ready) {
      stop();
      throw std::runtime_error("the server did not start");
    }
  }
  ~PostgresqlServer() { stop(); }
  PostgresqlServer(const PostgresqlServer&) = delete;
  PostgresqlServer& operator=(const PostgresqlServer&) = delete;

  std::string url(const std::string& database, const std::string& user = "deckhand") const {
    return "postgresql://" + user + "@/" + database + "?host=" + folder_.path();
  }

 private:
  // Ends the server at once should this program end before it stops it.
  pid_t started(const std::vector<std::string>& words, int log) const {
    const pid_t parent = ::getpid();
    const pid_t child = ::fork();
    if (child != 0) return child;
    if (user_ != 0 && (::setgroups(0, nullptr) != 0 || ::setresgid(group_, group_, group_) != 0 ||
                       ::setresuid(user_, user_, user_) != 0)) {
      ::_exit(126);
    }
    ::prctl(PR_SET_PDEATHSIG, SIGQUIT);
    if (::getppid() != parent || ::chdir("/") != 0) ::_exit(126);
    const int nothing = ::open("/dev/null", O_RDWR);
    ::dup2(nothing, STDIN_FILENO);
    ::dup2(nothing, STDOUT_FILENO);
    ::dup2(log >= 0 ? log : nothing, STDERR_FILENO);
    std::vector<char*> arguments;
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    ::execv(arguments[0], arguments.data());
    ::_exit(127);
  }

  static bool saysThatItIsReady(int log) {
    std::string said;
    std::array<char, 4096> piece{};
    for (ssize_t got = 0; (got = ::read(log, piece.data(), piece.size())) > 0;) {
      said.append(piece.data(), static_cast<std::size_t>(got));
      if (said.find("ready to accept connections") != std::string::npos) return true;
    }
    return false;
  }

  void stop() {
    if (process_ <= 0) return;
    ::kill(process_, SIGINT);
    ::waitpid(process_, nullptr, 0);
    process_ = 0;
  }

  ScratchFolder folder_;
  uid_t user_ = 0;
  gid_t group_ = 0;
  pid_t process_ = 0;
};

/// Starts the server when the first test asks for it, and stops it behind the last one.
class PostgresqlEnvironment : public ::testing::Environment {
 public:
  /// The one of this program.
  static PostgresqlEnvironment& instance() {
    static auto* environment = static_cast<PostgresqlEnvironment*>(
        ::testing::AddGlobalTestEnvironment(new PostgresqlEnvironment));  // NOLINT: owned by the framework
    return *environment;
  }

  /// Null where no server is installed.
  const PostgresqlServer* server() {
    const std::string programs = postgresqlPrograms();
    if (!server_ && !programs.empty()) server_ = std::make_unique<PostgresqlServer>(programs);
    return server_.get();
  }

  void TearDown() override { server_.reset(); }

 private:
  std::unique_ptr<PostgresqlServer> server_;
};

/// Known to the framework before the first test.
inline const PostgresqlEnvironment& postgresqlEnvironment = PostgresqlEnvironment::instance();

}  // namespace zq::test
