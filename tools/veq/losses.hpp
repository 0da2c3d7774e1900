/// \file
/// What a format does not keep of a network.
#pragma once

#include <string>
#include <vector>

#include <veq/veq.hpp>

#include "network_files.hpp"

namespace veq::tool {

struct Losses {
  /// One sentence for each thing that comes back otherwise than it was.
  std::vector<std::string> notes;
  /// Why a file would be of no use, as in "not written, because ..."; empty where it is.
  std::string total;

  [[nodiscard]] bool isTotal() const { return !total.empty(); }
};

/// Writes and reads the network in memory, and compares. O(length of the file).
[[nodiscard]] Losses lossesOf(const VEQNetwork& network, Format format);

}  // namespace veq::tool
