#include "backends/media/av_error.h"

extern "C" {
#include <libavutil/error.h>
}

#include <array>

namespace zq::media {

std::string avReason(int averror) {
  std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
  av_strerror(averror, text.data(), text.size());
  return text.data();
}

}  // namespace zq::media
