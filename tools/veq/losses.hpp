/// \file
/// What a format does not keep of a network.
#pragma once

#include <string>
#include <vector>

#include <veq/veq.hpp>

namespace veq::tool {

struct Losses {
  /// One sentence for each thing that comes back otherwise than it was.
  std::vector<std::string> notes;
  /// Why a file would be of no use, as in "not written, because ..."; empty where it is.
  std::string total;

  [[nodiscard]] bool isTotal() const { return !total.empty(); }
};

/// What a file of these bytes, made of the network, would not keep: reads them back and compares.
/// O(length of the file).
[[nodiscard]] Losses lossesOf(const VEQNetwork& network, FileFormat format,
                              const std::string& bytes);

}  // namespace veq::tool
