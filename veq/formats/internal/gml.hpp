/// \file
/// The GML format, as docs/formats/reading.md describes it.
#pragma once

#include <string_view>

#include "veq/formats/internal/read_context.hpp"
#include "veq/network/internal/network_draft.hpp"

namespace veq::internal {

/// Reads the first graph of a GML text, with all plain values of nodes and edges as columns.
/// Throws Error.
[[nodiscard]] NetworkDraft readGml(std::string_view text, ReadContext& context);

}  // namespace veq::internal
