#include "option_values.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>

namespace veq::tool {
namespace {

/// The signed and the unsigned 64-bit numbers end from here on.
constexpr std::uint64_t kFarAway = 9223372036854775807u;

template <class T>
std::optional<T> parsed(const std::string& text) {
  T value{};
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || rest != end) return std::nullopt;
  return value;
}

bool isAllDigits(const std::string& text) {
  return !text.empty() && std::all_of(text.begin(), text.end(),
                                      [](char digit) { return digit >= '0' && digit <= '9'; });
}

}  // namespace

std::string wordsFor(WholeNumbers range) {
  std::string words = "a whole number from " + std::to_string(range.least);
  return words + (range.most >= kFarAway ? " on" : " to " + std::to_string(range.most));
}

std::optional<std::uint64_t> readWholeNumber(const std::string& text, WholeNumbers range) {
  const auto value = parsed<std::uint64_t>(text);
  return value && *value >= range.least && *value <= range.most ? value : std::nullopt;
}

std::string refusalOf(const std::string& text, WholeNumbers range) {
  const auto value = parsed<std::uint64_t>(text);
  const bool tooLarge = isAllDigits(text) && (!value || *value > range.most);
  return tooLarge && range.most >= kFarAway ? "and " + text + " is too large" : "not " + text;
}

std::optional<double> readNumber(const std::string& text) {
  const auto value = parsed<double>(text);
  return value && std::isfinite(*value) ? value : std::nullopt;
}

std::optional<double> readShare(const std::string& text) {
  const auto value = parsed<double>(text);
  return value && *value >= 0 && *value <= 1 ? value : std::nullopt;
}

}  // namespace veq::tool
