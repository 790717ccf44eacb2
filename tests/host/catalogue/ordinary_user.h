#pragma once
// Doing something as a user to whom the rights of files apply: to root, as whom tests may run, they do not.

#include <grp.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <functional>
#include <string>

namespace zq::test {

/// What `work` returns, done in a process of its own.
inline std::string asOrdinaryUser(const std::function<std::string()>& work) {
  std::array<int, 2> pipe{};
  EXPECT_EQ(::pipe(pipe.data()), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    const passwd* nobody = ::getpwnam("nobody");
    if (::geteuid() == 0 && (nobody == nullptr || ::setgroups(0, nullptr) != 0 || ::setgid(nobody->pw_gid) != 0 ||
                             ::setuid(nobody->pw_uid) != 0)) {
      ::_exit(1);
    }
    const std::string result = work();
    const bool written = ::write(pipe[1], result.data(), result.size()) == static_cast<ssize_t>(result.size());
    ::_exit(written ? 0 : 1);
  }
  ::close(pipe[1]);
  std::string result;
  std::array<char, 4096> piece{};
  for (ssize_t got = 0; (got = ::read(pipe[0], piece.data(), piece.size())) > 0;) {
    result.append(piece.data(), static_cast<std::size_t>(got));
  }
  ::close(pipe[0]);
  int status = -1;
  ::waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  return result;
}

}  // namespace zq::test
