#pragma once

#include <string>
#include <string_view>

namespace veq::internal {

/// The text with "&quot;", "&amp;", "&lt;", "&gt;", "&apos;" and numbers such as "&#233;" and
/// "&#xE9;" as the characters that they stand for, in UTF-8. What is none of these stays as it is.
[[nodiscard]] std::string withoutEntities(std::string_view text);

/// Appends a character of Unicode in UTF-8.
void appendCharacter(std::string& text, char32_t character);

}  // namespace veq::internal
