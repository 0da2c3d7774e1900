/// \file
/// The xnet text format, as docs/formats/xnet.md describes it.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "veq/formats/internal/network_text.hpp"
#include "veq/network/internal/network_core.hpp"
#include "veq/network/internal/network_draft.hpp"

namespace veq::internal {

/// What the text describes; nothing where it describes no network, and then `failedAt`, if it is
/// given, is how many bytes had been read. Without it this is the published reader, which tells the
/// diagnostic log of vectors in space. O(length).
[[nodiscard]] std::optional<NetworkDraft> readXnet(std::string_view text,
                                                   std::size_t* failedAt = nullptr);

/// The text of a network. Names and values are written as they are, whether UTF-8 or not.
[[nodiscard]] NetworkText writeXnet(const NetworkCore& core);

}  // namespace veq::internal
