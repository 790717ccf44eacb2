#pragma once
// What an operation at the edge of the program returns: nothing to say, a value, or an error a user can act on.

#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace zq {

/// `message` says what failed and where; `informative` why, and what to do about it (may be empty).
struct Error {
  std::string message;
  std::string informative;

  /// Both texts as one line.
  std::string text() const { return informative.empty() ? message : message + ". " + informative; }
};

class [[nodiscard]] Status {
 public:
  Status() = default;
  Status(Error error) : error_(std::move(error)) {}  // NOLINT(google-explicit-constructor): `return Error{...}`

  bool ok() const { return !error_.has_value(); }
  /// Only when not ok().
  const Error& error() const { return *error_; }

 private:
  std::optional<Error> error_;
};

template <typename T>
class [[nodiscard]] Expected {
 public:
  Expected(T value) : result_(std::move(value)) {}      // NOLINT(google-explicit-constructor): `return value`
  Expected(Error error) : result_(std::move(error)) {}  // NOLINT(google-explicit-constructor): `return Error{...}`

  bool ok() const { return std::holds_alternative<T>(result_); }
  /// Only when ok().
  T& value() { return std::get<T>(result_); }
  const T& value() const { return std::get<T>(result_); }
  /// Only when not ok().
  const Error& error() const { return std::get<Error>(result_); }

 private:
  std::variant<T, Error> result_;
};

}  // namespace zq
