/// \file
/// What the values of options are to be: read from text, and told in words.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace veq::tool {

struct WholeNumbers {
  std::uint64_t least;
  std::uint64_t most;
};

/// "a whole number from 0 to 4294967295"; "a whole number from 1 on" where the end is so far that
/// nobody looks for it.
[[nodiscard]] std::string wordsFor(WholeNumbers range);

/// The number that the whole text is, in decimal digits. Otherwise nothing.
[[nodiscard]] std::optional<std::uint64_t> readWholeNumber(const std::string& text,
                                                           WholeNumbers range);

/// "not 5", or that the number is too large where no end was told.
[[nodiscard]] std::string refusalOf(const std::string& text, WholeNumbers range);

/// The finite decimal number that the whole text is. Otherwise nothing.
[[nodiscard]] std::optional<double> readNumber(const std::string& text);
/// The same from 0 to 1.
[[nodiscard]] std::optional<double> readShare(const std::string& text);

}  // namespace veq::tool
