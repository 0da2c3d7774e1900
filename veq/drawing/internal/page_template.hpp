/// \file
/// What the build puts into the library.
#pragma once

#include <span>
#include <string_view>

namespace veq::internal {

/// veq/drawing/page_template.html in pieces, which hold no zero bytes.
[[nodiscard]] std::span<const std::string_view> pageTemplatePieces();

/// As "0.9.0".
[[nodiscard]] std::string_view libraryVersion();

}  // namespace veq::internal
