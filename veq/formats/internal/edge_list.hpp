/// \file
/// Plain edge lists, as docs/formats/edge_list.md describes them.
#pragma once

#include <string_view>

#include "veq/formats/internal/network_text.hpp"
#include "veq/network/internal/network_core.hpp"
#include "veq/network/internal/network_draft.hpp"

namespace veq::internal {

/// The network of "source target weight" lines, whose tokens are names. std::out_of_range where
/// there is no edge. O(length).
[[nodiscard]] NetworkDraft readEdgeList(std::string_view text, bool directed);

[[nodiscard]] NetworkText writeEdgeList(const NetworkCore& core);

}  // namespace veq::internal
