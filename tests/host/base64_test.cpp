#include "host/base64.h"

#include <gtest/gtest.h>

namespace zq::host {
namespace {

std::vector<std::uint8_t> bytes(const std::string& text) {
  return {text.begin(), text.end()};
}

// The vectors of RFC 4648.
TEST(Base64, WritesAndReadsTheVectorsOfTheStandard) {
  const std::vector<std::pair<std::string, std::string>> vectors{{"", ""},
                                                                 {"f", "Zg=="},
                                                                 {"fo", "Zm8="},
                                                                 {"foo", "Zm9v"},
                                                                 {"foob", "Zm9vYg=="},
                                                                 {"fooba", "Zm9vYmE="},
                                                                 {"foobar", "Zm9vYmFy"}};
  for (const auto& [plain, text] : vectors) {
    EXPECT_EQ(base64Of(bytes(plain)), text);
    EXPECT_EQ(bytesOfBase64(text), bytes(plain)) << text;
  }
}

TEST(Base64, KeepsEveryByte) {
  std::vector<std::uint8_t> all;
  for (int byte = 0; byte < 256; ++byte) all.push_back(static_cast<std::uint8_t>(byte));
  EXPECT_EQ(bytesOfBase64(base64Of(all)), all);
}

TEST(Base64, RefusesWhatItWouldNotWrite) {
  for (const char* wrong :
       {"Z", "Zg", "Zg=", "Zg===", "Zh==", "Zm9=", "Zm9v=", "Zm 9v", "Zm9v\n", "=", "Zg==Zg==", "Zm-_"}) {
    EXPECT_EQ(bytesOfBase64(wrong), std::nullopt) << wrong;
  }
}

}  // namespace
}  // namespace zq::host
