#include "dv/dv_constants.h"

#include <cstddef>

namespace zq {
namespace {

/// The table row of a code. Unsigned, so that every code below -1 falls out of the table as well.
std::size_t rowOf(int ratio) {
  const unsigned row = static_cast<unsigned>(ratio) + 1U;
  return row < DVAspectRatioValues.size() ? row : 0;
}

}  // namespace

const char* DVAspectRatioNameForRatio(int ratio) {
  return DVAspectRatioName[rowOf(ratio)];
}

float DVAspectRatioValueForRatio(int ratio) {
  return DVAspectRatioValues[rowOf(ratio)];
}

}  // namespace zq
