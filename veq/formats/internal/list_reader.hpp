#pragma once

#include "veq/formats/internal/read_context.hpp"
#include "veq/formats/internal/text_input.hpp"
#include "veq/network/internal/network_draft.hpp"

namespace veq::internal {

/// Reads a list of edges of any usual make: two columns or more, between blanks, tabs, commas or
/// semicolons. Where all ends are integers the vertices are these, in ascending order, with a
/// column "Id"; otherwise they are the names, in the order of their first appearance. The draft
/// takes nothing from the text, which may go. Throws Error.
[[nodiscard]] NetworkDraft readList(TextInput& text, ReadContext& context);

}  // namespace veq::internal
