/// \file
/// The Matrix Market format, as docs/formats/reading.md describes it.
#pragma once

#include <cstdint>

#include "veq/formats/internal/read_context.hpp"
#include "veq/formats/internal/text_input.hpp"
#include "veq/natural/walk_network.hpp"
#include "veq/network/internal/network_draft.hpp"

namespace veq::internal {

/// Reads a matrix as a network: a symmetric one undirected, a general or skew-symmetric one
/// directed, a rectangular one with two modes. Throws Error.
[[nodiscard]] NetworkDraft readMatrixMarket(TextInput& text, ReadContext& context);

/// What the lines before the entries say.
struct MatrixHead {
  std::uint64_t vertices;
  bool directed;
  bool weighted;
};
[[nodiscard]] MatrixHead readMatrixHead(TextInput& text, ReadContext& context);

/// Gives the edges of such a network to the receiver, some at a time.
void readMatrixEdges(TextInput& text, ReadContext& context, const EdgeReceiver& receiver);

}  // namespace veq::internal
