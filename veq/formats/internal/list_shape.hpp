/// \file
/// How a list of edges is laid out, as far as its first lines tell.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "veq/formats/internal/text_input.hpp"

namespace veq::internal {

struct ListShape {
  static constexpr std::size_t kNone = SIZE_MAX;

  char separator = ' ';
  /// The line of the header, 0 where there is none.
  std::uint64_t headerLine = 0;
  /// It has none of the usual words.
  bool isHeaderGuessed = false;
  std::vector<std::string> header;
  std::size_t source = 0;
  std::size_t target = 1;
  std::size_t weight = kNone;
  /// A column of the words "Directed" and "Undirected".
  std::size_t type = kNone;
  /// It tells of vertices, and of no edges.
  bool isVertexTable = false;
  /// What the list says of itself, if anything.
  std::optional<bool> directed;
  /// Ends of two kinds, each counted from 1 on its own; the sizes where they are told.
  bool twoModes = false;
  std::uint64_t firstMode = 0;
  std::uint64_t secondMode = 0;
};

/// Whether the line holds nothing, or nothing but a comment: #, % or // at its beginning.
[[nodiscard]] bool isListComment(std::string_view line);

/// Nothing where no line holds two fields.
[[nodiscard]] std::optional<ListShape> shapeOfList(TextInput& text);

}  // namespace veq::internal
