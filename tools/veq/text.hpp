/// \file
/// Text for people: what a terminal may be shown, and numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace veq::tool {

/// The text with every control character, line ends included, replaced by "?", so that names and
/// file names neither break a line nor steer the terminal.
[[nodiscard]] std::string printable(std::string_view text);

/// The first so many characters of UTF-8 text, and "..." where there are more.
[[nodiscard]] std::string shortened(const std::string& text, std::size_t characters);

/// The number of characters in UTF-8 text.
[[nodiscard]] std::size_t characterCount(std::string_view text);

/// At most six significant digits.
[[nodiscard]] std::string shortNumber(double value);

/// With a fixed number of decimals.
[[nodiscard]] std::string fixedNumber(double value, int decimals);

/// "999 bytes", "4.8 GB", "48 GB": units of a thousand.
[[nodiscard]] std::string bytesText(std::uint64_t bytes);

/// "7.09 %", or "-" where the whole is 0.
[[nodiscard]] std::string percentage(double part, double whole);

/// "1 vertex", "2 vertices".
[[nodiscard]] std::string counted(std::uint64_t count, std::string_view one, std::string_view many);

}  // namespace veq::tool
