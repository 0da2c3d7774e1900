/// \file
/// In what two networks differ, in words.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <veq/veq.hpp>

namespace veq::tool {

/// Something that came back otherwise than it was.
struct Difference {
  /// A sentence without a full stop.
  std::string text;
  /// Whether something is gone that nobody gets back. What comes back in another form is not.
  bool loses = true;
};

/// What became of `before` when it came back as `after`, its vertices and edges in the same order.
/// The ends of edges are not compared. O(size of both).
[[nodiscard]] std::vector<Difference> differencesBetween(const VEQNetwork& before,
                                                         const VEQNetwork& after);

/// The same for the columns of edges alone.
[[nodiscard]] std::vector<Difference> edgeColumnDifferences(const VEQNetwork& before,
                                                            const VEQNetwork& after);

/// The same for the weights of edges alone; its text is empty where there is no difference.
[[nodiscard]] Difference edgeWeightsDifference(const VEQNetwork& before, const VEQNetwork& after);

}  // namespace veq::tool
