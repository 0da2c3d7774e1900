/// \file
/// The Pajek format, as docs/formats/pajek.md describes it.
#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "veq/base/internal/team.hpp"
#include "veq/formats/internal/network_text.hpp"
#include "veq/network/internal/network_core.hpp"
#include "veq/network/internal/network_draft.hpp"

namespace veq::internal {

/// What the text describes; nothing where it describes no network. O(length), and O(n) where it
/// gives names or positions to n vertices.
[[nodiscard]] std::optional<NetworkDraft> readPajek(std::string_view text, Team& team);

/// The text of a network, in UTF-8.
[[nodiscard]] NetworkText writePajek(const NetworkCore& core);

/// Puts the values of one axis into the range from -offset x scale to (1 - offset) x scale; all
/// become 0 where they do not differ.
void spreadAxis(std::span<double> values, double offset, double scale);

}  // namespace veq::internal
