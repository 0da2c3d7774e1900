/// \file
/// Lists of integers, whose edges are passed on and not kept.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "veq/formats/internal/integer_edges.hpp"
#include "veq/formats/internal/lines_ahead.hpp"
#include "veq/formats/internal/list_shape.hpp"
#include "veq/formats/internal/read_context.hpp"
#include "veq/formats/internal/text_input.hpp"
#include "veq/natural/walk_network.hpp"

namespace veq::internal {

/// Gives the edges of such a list to a receiver, some at a time. Throws Error where a line is
/// anything but two integers, with or without a weight, or a comment.
class IntegerListPass {
 public:
  /// Ends from `mostVertices` on are errors.
  IntegerListPass(const ListShape& shape, std::uint64_t mostVertices, ReadContext& context)
      : shape_(shape), mostVertices_(mostVertices), context_(context), whole_(shape) {}

  void read(TextInput& text, const EdgeReceiver& receiver);

 private:
  /// Reads so many bytes at most of a text, which is cut behind lines, on all threads.
  std::size_t readSome(std::string_view text, const EdgeReceiver& receiver);
  /// What is wrong with a piece, of which it is known that something is.
  [[noreturn]] void failIn(std::string_view piece, std::uint64_t linesBefore);
  [[nodiscard]] bool areVertices(const IntegerEdges& edges) const;

  const ListShape& shape_;
  std::uint64_t mostVertices_;
  ReadContext& context_;
  IntegerEdges whole_;  // of which no more than the kind of line is used
  TextPieces cut_;
  std::vector<IntegerEdges> pieces_;
  std::vector<std::uint64_t> from_;
  std::vector<std::uint64_t> to_;
  bool loneReturns_ = false;
  std::uint64_t lines_ = 0;  // before what is read next
};

}  // namespace veq::internal
