#include "backends/media/quiet_encoders.h"

#include <cstdlib>

namespace zq::media {

void quietEncoders() {
  // That of AV1 tells its settings at every start. Errors come as results too; who set it keeps what they set.
  setenv("SVT_LOG", "1", 0);
}

}  // namespace zq::media
