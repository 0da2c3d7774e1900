#pragma once

#include "veq/base/internal/byte_stream.hpp"
#include "veq/formats/internal/read_context.hpp"
#include "veq/network/internal/network_draft.hpp"

namespace veq::readers {

/// Reads the first graph of a GraphML file, with all its data as columns. Throws Error.
[[nodiscard]] internal::NetworkDraft readGraphMl(internal::ByteStream& bytes,
                                                 internal::ReadContext& context);

}  // namespace veq::readers
