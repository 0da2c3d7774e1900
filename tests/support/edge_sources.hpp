#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "veq/natural/walk_network.hpp"

namespace veq::test {

using EdgePairs = std::vector<std::pair<std::uint64_t, std::uint64_t>>;

/// A source of these edges, so many at a time.
inline EdgeSource edgesFrom(EdgePairs edges, std::size_t atOnce = 3) {
  return [edges = std::move(edges), atOnce](const EdgeReceiver& receiver) {
    for (std::size_t first = 0; first < edges.size(); first += atOnce) {
      std::vector<std::uint64_t> from;
      std::vector<std::uint64_t> to;
      for (std::size_t e = first; e < std::min(edges.size(), first + atOnce); ++e) {
        from.push_back(edges[e].first);
        to.push_back(edges[e].second);
      }
      receiver(from, to);
    }
  };
}

}  // namespace veq::test
