/// \file
/// The networks that several tests of questions ask about.
#pragma once

#include <cstdint>

#include "veq/network.hpp"

namespace veq::test {

/// A triangle 0, 1, 2 with a tail 3 at vertex 2.
inline Network triangleWithTail() {
  return Network::build({{0, 1}, {1, 2}, {2, 0}, {2, 3}}).value();
}

/// The path 0 - 1 - ... - length.
inline Network path(std::int64_t length, bool directed) {
  NetworkBuilder builder;
  builder.addVertices(1);
  for (std::int64_t v = 0; v < length; ++v) {
    builder.addEdge(static_cast<std::uint64_t>(v), static_cast<std::uint64_t>(v) + 1);
  }
  return builder.build({.directed = directed}).value();
}

}  // namespace veq::test
