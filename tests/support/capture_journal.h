#pragma once
// What fakes were asked to do, one line a request, in the order in which it happened across all of them.

#include <algorithm>
#include <initializer_list>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace zq::test {

/// From any thread. A line is "who: what".
class CaptureJournal {
 public:
  using Lines = std::vector<std::string>;

  void add(std::string_view who, std::string_view what) {
    const std::lock_guard guard(mutex_);
    lines_.push_back(std::string(who) + ": " + std::string(what));
  }

  Lines lines() const {
    const std::lock_guard guard(mutex_);
    return lines_;
  }

  /// The lines of these only.
  Lines linesOf(std::initializer_list<std::string_view> names) const {
    Lines chosen;
    for (const std::string& line : lines()) {
      const auto isTheirs = [&line](std::string_view who) { return line.starts_with(std::string(who) + ": "); };
      if (std::any_of(names.begin(), names.end(), isTheirs)) chosen.push_back(line);
    }
    return chosen;
  }

  void clear() {
    const std::lock_guard guard(mutex_);
    lines_.clear();
  }

 private:
  mutable std::mutex mutex_;
  Lines lines_;
};

}  // namespace zq::test
