/// \file
/// The GML format, as docs/formats/reading.md describes it.
#pragma once

#include "veq/formats/internal/read_context.hpp"
#include "veq/formats/internal/text_input.hpp"
#include "veq/network/internal/network_draft.hpp"

namespace veq::internal {

/// Reads the first graph of a GML text, with all plain values of nodes and edges as columns.
/// Throws Error.
[[nodiscard]] NetworkDraft readGml(TextInput& text, ReadContext& context);

}  // namespace veq::internal
