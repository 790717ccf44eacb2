#include "base/digits.h"

#include <array>
#include <charconv>

namespace zq {

void appendDigits(std::string& out, std::int64_t number, int width) {
  if (width == 2 && number >= 0 && number < 100) {
    const std::array<char, 2> digits{static_cast<char>('0' + number / 10), static_cast<char>('0' + number % 10)};
    out.append(digits.data(), digits.size());
    return;
  }
  std::array<char, 24> digits{};
  if (number < 0) out.push_back('-');
  const std::uint64_t magnitude =
      number < 0 ? 0 - static_cast<std::uint64_t>(number) : static_cast<std::uint64_t>(number);
  const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), magnitude).ptr;
  for (std::ptrdiff_t length = end - digits.data(); length < width; ++length) out.push_back('0');
  out.append(digits.data(), static_cast<std::size_t>(end - digits.data()));
}

}  // namespace zq
