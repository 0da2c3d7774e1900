/// \file
/// What becomes of the ends of a list's edges.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "veq/formats/internal/list_shape.hpp"
#include "veq/formats/internal/read_context.hpp"
#include "veq/formats/internal/text_input.hpp"
#include "veq/network/internal/network_draft.hpp"

namespace veq::internal {

/// A list as it lies there, in which the line of what is wrong is looked for once something is.
struct ListText {
  TextInput& text;
  const ListShape& shape;

  /// An error at the line whose end is one vertex too many.
  void requireVertices(std::uint64_t vertices, const ReadContext& context) const;
};

/// Gives the draft ends that are integers: as indices where that is asked for, as vertices of two
/// modes where the list says so, and otherwise as ids, which become the column "Id". Ends behind
/// the given number of edges name vertices alone.
void takeIntegerEnds(NetworkDraft& draft, RawVector<std::uint64_t> from,
                     RawVector<std::uint64_t> to, std::uint64_t edges, const ListText& list,
                     ReadContext& context);

}  // namespace veq::internal
