#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

#include "veq/formats/internal/cbor_reader.hpp"
#include "veq/numeric/vectors.hpp"

namespace veq::internal {

inline constexpr std::string_view kPrecisionKey = "precision";
inline constexpr std::array<std::string_view, 3> kComponentKeys{"x", "y", "z"};

/// What a vector (components: numbers) and an array of vectors (components: arrays) consist of.
template <class Component>
struct VectorFields {
  Precision precision = kDoublePrecision;
  std::array<Component, 3> components{};
  std::size_t dimensions = 0;
};

[[nodiscard]] inline std::optional<Precision> readPrecision(CborReader& in) {
  const auto head = in.readHead();
  const auto number = head ? in.readNumber(*head) : std::nullopt;
  if (!number || number->type() != ElementType::kInteger) return std::nullopt;
  const auto value = number->as<std::int64_t>();
  using Limits = std::numeric_limits<Precision>;
  if (value < Limits::min() || value > Limits::max()) return std::nullopt;
  return static_cast<Precision>(value);
}

/// Reads a map of "precision", "x", "y" and for three dimensions "z", in any order, each once and
/// nothing else; `readComponent(in, component)` returns whether it could.
template <class Component, class ReadComponent>
[[nodiscard]] std::optional<VectorFields<Component>> readVectorFields(CborReader& in,
                                                                      const CborHead& head,
                                                                      ReadComponent readComponent) {
  if (head.major != CborMajor::kMap || head.argument < 3 || head.argument > 4) return std::nullopt;
  VectorFields<Component> fields;
  fields.dimensions = static_cast<std::size_t>(head.argument) - 1;
  std::array<bool, 4> seen{};  // with as many different keys as there are, none is missing
  for (std::size_t i = 0; i <= fields.dimensions; ++i) {
    const auto key = in.readString();
    if (!key) return std::nullopt;
    std::size_t which = 0;
    while (which < fields.dimensions && *key != kComponentKeys[which]) ++which;
    if (seen[which]) return std::nullopt;
    seen[which] = true;
    if (which < fields.dimensions) {
      if (!readComponent(in, fields.components[which])) return std::nullopt;
    } else {
      const auto precision = *key == kPrecisionKey ? readPrecision(in) : std::nullopt;
      if (!precision) return std::nullopt;
      fields.precision = *precision;
    }
  }
  return fields;
}

}  // namespace veq::internal
