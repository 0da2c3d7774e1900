/// \file
/// How names and text values travel inside the double quotes of a line.
#pragma once

#include <string>
#include <string_view>

namespace veq::internal {

/// Appends the text with "<newline>" for every line feed and "<quote>" for every double quote, and
/// nothing else changed: a carriage return stays and breaks the line on reading.
void appendEscaped(std::string& out, std::string_view text);

/// Undoes appendEscaped; a text that held "<quote>" from the start comes back with a double quote.
std::string unescaped(std::string_view text);

}  // namespace veq::internal
