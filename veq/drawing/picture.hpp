/// \file
/// A network as one picture.
#pragma once

#include <string>
#include <string_view>

#include "veq/base/export.hpp"
#include "veq/base/progress.hpp"
#include "veq/base/result.hpp"
#include "veq/drawing/page.hpp"
#include "veq/natural/network.hpp"

namespace veq {

/// How to draw a network.
/// \ingroup drawing
struct PictureOptions {
  /// What the picture is called.
  std::string title{};
  /// Where vertices are.
  Layout layout = Layout::kAutomatic;
  /// "degree", or a column: of numbers, or of at most 12 different texts; empty for one colour.
  std::string color{};
  /// "constant", "degree", "strength" or a column of numbers; empty for "degree".
  std::string size{};
  /// Follows the layout.
  Progress progress{};
};

/// A picture in SVG, whose vertices tell their names: edges as lines, with a point at their targets
/// where they are directed, and names beside the vertices of up to 100. Colours are those that
/// people see who are blind for some.
///
/// Errors: "30000 vertices and 50000 edges are more than a picture shows (20000): write a page, or
/// choose some", "column Town: 40 different texts are more than there are colours (12)", and as of
/// pageOf().
/// \ingroup drawing
[[nodiscard]] VEQ_EXPORT Result<std::string> svgOf(const Network& network,
                                                   const PictureOptions& options = {});

/// The same into a file, atomically; "-" is standard output. Also why it could not be written.
/// \ingroup drawing
VEQ_EXPORT Outcome writeSvg(std::string_view path, const Network& network,
                            const PictureOptions& options = {});

}  // namespace veq
