#include "host/tape_device.h"

#include <gtest/gtest.h>

namespace zq::host {
namespace {

TEST(TapeDevice, ATapeImageWaitsForWhoTakesItsFramesButAtItsOwnPaceForCompression) {
  EXPECT_FALSE(deckOptions(false, false).live);
  EXPECT_FALSE(deckOptions(false, true).live);
  EXPECT_FALSE(deckOptions(true, false).live);
  EXPECT_TRUE(deckOptions(true, true).live);
}

}  // namespace
}  // namespace zq::host
