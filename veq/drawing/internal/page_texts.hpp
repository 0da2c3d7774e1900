/// \file
/// Texts of any bytes in the places of a page that take some alone.
#pragma once

#include <string>
#include <string_view>

namespace veq::internal {

/// UTF-8, with U+FFFD for each byte that belongs to no character.
[[nodiscard]] std::string asUtf8(std::string_view bytes);

/// Text of HTML or XML, in an element or in quotes: UTF-8, in which nothing is markup, and U+FFFD
/// for control characters.
[[nodiscard]] std::string markupText(std::string_view bytes);

/// Appends a string of JSON in its quotes, in ASCII but for what is above U+009F.
void appendJsonText(std::string& out, std::string_view bytes);

[[nodiscard]] std::string base64(std::string_view bytes);

}  // namespace veq::internal
