#pragma once

#include "veq/formats/internal/read_context.hpp"
#include "veq/formats/internal/text_input.hpp"
#include "veq/network/internal/network_draft.hpp"

namespace veq::internal {

/// Reads a Pajek network as its users write them: all sections, in any order and several times,
/// with relations, two modes, matrices and comments. Throws Error.
[[nodiscard]] NetworkDraft readPajekSections(TextInput& text, ReadContext& context);

}  // namespace veq::internal
