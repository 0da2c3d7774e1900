/// \file
/// What strings hold.
#pragma once

#include <string_view>

#include "veq/base/export.hpp"

namespace veq {

/// Whether the bytes are UTF-8. Overlong forms, surrogates and what is above U+10FFFF are not.
/// O(n).
/// \ingroup files
[[nodiscard]] VEQ_EXPORT bool isUtf8(std::string_view bytes);

}  // namespace veq
