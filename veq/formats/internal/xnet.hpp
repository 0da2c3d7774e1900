/// \file
/// The xnet text format, as docs/formats/xnet.md describes it.
#pragma once

#include <optional>
#include <string_view>

#include "veq/base/internal/pace.hpp"
#include "veq/base/internal/team.hpp"
#include "veq/formats/internal/network_text.hpp"
#include "veq/formats/internal/text_input.hpp"
#include "veq/network/internal/network_core.hpp"
#include "veq/network/internal/network_draft.hpp"

namespace veq::internal {

/// What the text describes; nothing where it describes no network, and then `stopped`, if it is
/// given, is the place of the header or name that ended the reading, or nothing where a number was
/// wrong. Without it this is the published reader, which tells the diagnostic log of vectors in
/// space. Whoever gives a pace may stop it. O(length).
[[nodiscard]] std::optional<NetworkDraft> readXnet(TextInput& text, Team& team,
                                                   std::optional<Place>* stopped = nullptr,
                                                   Pace* pace = nullptr);
[[nodiscard]] inline std::optional<NetworkDraft> readXnet(std::string_view text,
                                                          Team& team = Team::alone()) {
  TextInput input(text);
  return readXnet(input, team);
}

/// A number of vertices, or the end of an edge, as it stands in the text.
struct XnetNumber {
  Place place;
  std::string_view text;
  bool isEnd = false;
};

/// The number that says how many vertices the text has: the first that is negative, or else the
/// first of those that ask for the most. O(length).
[[nodiscard]] XnetNumber causeOfVertices(TextInput& text);

/// The text of a network. Names and values are written as they are, whether UTF-8 or not.
[[nodiscard]] NetworkText writeXnet(const NetworkCore& core);

}  // namespace veq::internal
