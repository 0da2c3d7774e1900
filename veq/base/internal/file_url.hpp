#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace veq::internal {

/// The path that a URL names: of "file:/path", "file:///path" and "file://localhost/path" the path,
/// percent-decoded; a text without a scheme (a letter, then letters, digits, "+", "-" and ".", up
/// to a colon) is itself a path. Nothing for another scheme or host, a path that is not absolute, a
/// broken escape, or a NUL.
[[nodiscard]] std::optional<std::string> pathFromUrl(std::string_view url);

}  // namespace veq::internal
