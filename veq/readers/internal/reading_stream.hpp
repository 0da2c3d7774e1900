#pragma once

#include <string_view>

#include "veq/base/export.hpp"
#include "veq/base/internal/byte_stream.hpp"
#include "veq/formats/reading.hpp"

namespace veq::readers {

/// What readNetwork does with the bytes of a file. The name serves its suffix alone.
[[nodiscard]] VEQ_EXPORT Reading readStream(internal::ByteStream& bytes, const ReadOptions& options,
                                            std::string_view name);

}  // namespace veq::readers
