/// \file
/// One file that shows a network and replays a walk on it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "veq/agents/walk_record.hpp"
#include "veq/base/export.hpp"
#include "veq/base/progress.hpp"
#include "veq/base/result.hpp"
#include "veq/natural/network.hpp"

namespace veq {

/// Where the vertices of a drawing are.
/// \ingroup drawing
enum class Layout : std::uint8_t {
  kAutomatic,  ///< Where the column "Position" says it for each vertex, as there; else by forces.
  kForce,      ///< As forceLayout() places them.
  kGiven,      ///< As the column "Position" says.
  kCircle,     ///< On a circle, in the order of their indices.
};

/// How to show a network on a page.
/// \ingroup drawing
struct PageOptions {
  /// What the page is called.
  std::string title{};
  /// Where vertices are.
  Layout layout = Layout::kAutomatic;
  /// The columns of vertices that can be looked at, "Vertex Weight" being their weights; without a
  /// list the first eight, but for "Name" and "Position".
  std::optional<std::vector<std::string>> columns{};
  /// What to colour by at first: "degree", "visits" or a column, which is then on the page as well;
  /// empty leaves it to the page.
  std::string color{};
  /// What sizes are by: "constant", "degree", "strength", "visits" or a column of numbers.
  std::string size{};
  /// The command or call by which the page was made, to be told there.
  std::string call{};
  /// To be told of the walk: its seed.
  std::optional<std::uint64_t> seed{};
  /// Likewise its substream.
  std::optional<std::uint64_t> substream{};
  /// Likewise how its starts were chosen.
  std::string starts{};
  /// Follows the layout.
  Progress progress{};
};

/// A page of HTML that needs nothing else: it draws the network in whatever browser opens it, and
/// walks the walk again there, if there is one. docs/formats/page.md describes what is in it. Names
/// of any bytes can do no harm there.
///
/// What is too large is refused with what to do: "400000 vertices are more than a page can draw
/// (200000): choose some, as a component", and edges beyond 1000000, agents beyond 100000, columns
/// beyond 64, and moves of agents with memory beyond 4000000 bytes alike. Other errors: "the walk
/// was on a network of 5 vertices and 4 edges", "no column Age", "column Town: sizes need numbers",
/// "no walk whose visits could be shown", "column Position: vertex 3 is at no finite place"; and a
/// stop. Some seconds for the largest.
/// \ingroup drawing
[[nodiscard]] VEQ_EXPORT Result<std::string> pageOf(const Network& network,
                                                    const PageOptions& options = {},
                                                    const WalkRecord* walk = nullptr);

/// The same into a file, atomically; "-" is standard output. Also why it could not be written.
/// \ingroup drawing
VEQ_EXPORT Outcome writePage(std::string_view path, const Network& network,
                             const PageOptions& options = {}, const WalkRecord* walk = nullptr);

/// Why there can be no page of it that large, said before somebody walks for long: the same errors.
/// \ingroup drawing
[[nodiscard]] VEQ_EXPORT Outcome checkPage(const Network& network, const PageOptions& options = {});

}  // namespace veq
