/// \file
/// From a network as a value to what it consists of.
#pragma once

#include "veq/natural/network.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq::internal {

[[nodiscard]] inline const NetworkCore& coreOf(const Network& network) {
  return CoreAccess::of(*network.published());
}

}  // namespace veq::internal
