#pragma once
// Keeps encoders off the terminal that know no other way.

namespace zq::media {

/// Comes before the first use of an encoder, while no other thread reads the environment.
void quietEncoders();

}  // namespace zq::media
