/// \file
/// The operating system's own randomness.
#pragma once

#include <cstdint>

namespace veq::internal {

/// 32 bits that differ from run to run. Never fails; may be called from any thread.
[[nodiscard]] std::uint32_t systemEntropy();

}  // namespace veq::internal
