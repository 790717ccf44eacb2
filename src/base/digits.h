#pragma once
// Appending numbers with leading zeros, for texts that are made for every frame of a tape.

#include <cstdint>
#include <string>

namespace zq {

/// At least `width` digits; a minus sign comes before them.
void appendDigits(std::string& out, std::int64_t number, int width);

}  // namespace zq
