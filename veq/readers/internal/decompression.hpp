#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "veq/base/internal/byte_stream.hpp"

namespace veq::readers {

/// What the bytes hold, also of several pieces one behind the other, compressed as `how` says:
/// "gzip" or "zstd". Reading it throws Error where the bytes are damaged, end too early, or hold
/// more than `most`, by default 64 times what they are and a GiB. They must outlive it.
[[nodiscard]] internal::ByteStream decompressed(std::string_view how, internal::ByteStream& bytes,
                                                std::optional<std::uint64_t> most);

}  // namespace veq::readers
