/// \file
/// The sections of a page's block that keep a walk.
#pragma once

#include "veq/agents/internal/recorded_walk.hpp"
#include "veq/drawing/internal/byte_writer.hpp"
#include "veq/natural/network.hpp"

namespace veq::internal {

[[nodiscard]] ByteWriter walkPart(const RecordedWalk& walk);
/// Of agents with memory, and so are these.
[[nodiscard]] ByteWriter movesPart(const Network& network, const RecordedWalk& walk);
[[nodiscard]] ByteWriter memoriesPart(const RecordedWalk& walk);

}  // namespace veq::internal
