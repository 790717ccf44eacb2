#pragma once
// Copying out of a mapped file, which others may cut short meanwhile.

#include <cstddef>
#include <cstdint>

namespace zq::backend {

/// Copies `size` bytes. False, with some of `to` overwritten, where the system cannot supply the bytes of `from`: the
/// file behind it became shorter or its disk fails. Without this the process would end by a signal.
bool copyGuarded(std::uint8_t* to, const std::uint8_t* from, std::size_t size);

}  // namespace zq::backend
