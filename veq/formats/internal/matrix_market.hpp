/// \file
/// The Matrix Market format, as docs/formats/reading.md describes it.
#pragma once

#include "veq/formats/internal/read_context.hpp"
#include "veq/formats/internal/text_input.hpp"
#include "veq/network/internal/network_draft.hpp"

namespace veq::internal {

/// Reads a matrix as a network: a symmetric one undirected, a general or skew-symmetric one
/// directed, a rectangular one with two modes. Throws Error.
[[nodiscard]] NetworkDraft readMatrixMarket(TextInput& text, ReadContext& context);

}  // namespace veq::internal
