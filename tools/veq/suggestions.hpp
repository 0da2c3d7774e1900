/// \file
/// What somebody may have meant who mistyped a word.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace veq::tool {

/// The word closest to what was typed: one that begins with it (from three letters on), else one
/// that few letters to add, drop, change or swap make of it. Empty where none is close.
[[nodiscard]] std::string nearestWord(std::string_view typed,
                                      const std::vector<std::string>& words);

/// "a", "a and b", "a, b and c".
[[nodiscard]] std::string wordList(const std::vector<std::string>& words,
                                   std::string_view lastJoint = "and");

}  // namespace veq::tool
