#include "veq/drawing/internal/colors.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace veq::internal {
namespace {

struct Color {
  int red, green, blue;
};

constexpr std::array<Color, 5> kScale{
    {{68, 1, 84}, {59, 82, 139}, {33, 145, 140}, {94, 201, 98}, {253, 231, 37}}};
constexpr std::array<Color, kClassColors> kClasses{{{0, 114, 178},
                                                    {230, 159, 0},
                                                    {0, 158, 115},
                                                    {204, 121, 167},
                                                    {86, 180, 233},
                                                    {213, 94, 0},
                                                    {240, 228, 66},
                                                    {90, 90, 90},
                                                    {51, 34, 136},
                                                    {136, 34, 85},
                                                    {153, 153, 51},
                                                    {170, 170, 170}}};

std::string text(Color color) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string written = "#";
  for (const int part : {color.red, color.green, color.blue}) {
    written += kDigits[static_cast<std::size_t>(part / 16)];
    written += kDigits[static_cast<std::size_t>(part % 16)];
  }
  return written;
}

}  // namespace

std::string scaleColor(double share) {
  const double place = std::clamp(share, 0.0, 1.0) * (kScale.size() - 1);
  const auto step = std::min(static_cast<std::size_t>(place), kScale.size() - 2);
  const double rest = place - static_cast<double>(step);
  const auto between = [rest](int from, int to) {
    return static_cast<int>(from + rest * (to - from) + 0.5);
  };
  const Color& from = kScale[step];
  const Color& to = kScale[step + 1];
  return text(
      {between(from.red, to.red), between(from.green, to.green), between(from.blue, to.blue)});
}

std::string classColor(std::uint64_t number) { return text(kClasses[number]); }

}  // namespace veq::internal
