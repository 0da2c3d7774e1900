/// \file
/// Edge lists as people have them: two columns, or three with a weight.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <veq/veq.hpp>

namespace veq::tool {

/// Splits the lines itself, because the library's own reader takes every other line of a list
/// without weights for the weight of the line before. Vertices are named by the text in the first
/// two columns. Empty lines are skipped; so are those that begin with "#" or "%", and columns after
/// the third, and then the notes say so. Failure, naming the file, where a line has one column, a
/// weight is missing or no number, or there are no edges.
[[nodiscard]] Shared<VEQNetwork> networkWithEdgeList(const std::string& file,
                                                     std::string_view bytes, bool directed,
                                                     std::vector<std::string>& notes);

}  // namespace veq::tool
