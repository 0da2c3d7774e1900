/// \file
/// The xnet text format, as docs/formats/xnet.md describes it.
#pragma once

#include <optional>
#include <string_view>

#include "veq/formats/internal/network_text.hpp"
#include "veq/formats/internal/text_input.hpp"
#include "veq/network/internal/network_core.hpp"
#include "veq/network/internal/network_draft.hpp"

namespace veq::internal {

/// Why a text describes no network.
struct XnetFailure {
  Place place;
  /// Whether it was read to its end before that was seen.
  bool atEnd = false;
};

/// What the text describes; nothing where it describes no network, and then `failure`, if it is
/// given, says why. Without it this is the published reader, which tells the diagnostic log of
/// vectors in space. O(length).
[[nodiscard]] std::optional<NetworkDraft> readXnet(TextInput& text, XnetFailure* failure = nullptr);
[[nodiscard]] inline std::optional<NetworkDraft> readXnet(std::string_view text) {
  TextInput input(text);
  return readXnet(input);
}

/// The text of a network. Names and values are written as they are, whether UTF-8 or not.
[[nodiscard]] NetworkText writeXnet(const NetworkCore& core);

}  // namespace veq::internal
