/// \file
/// Files whose edges are read twice.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "veq/base/export.hpp"
#include "veq/base/internal/byte_stream.hpp"
#include "veq/formats/walk_reading.hpp"

namespace veq::internal {

/// What compressed bytes hold, or nothing for others. They must outlive it.
using Decompress = std::function<std::optional<ByteStream>(ByteStream& bytes)>;

/// What readWalkNetwork does, with what decompresses.
[[nodiscard]] VEQ_EXPORT WalkReading readWalkFile(const std::string& path,
                                                  const WalkReadOptions& options,
                                                  const Decompress& decompress);

}  // namespace veq::internal
