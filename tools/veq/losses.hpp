/// \file
/// What a format does not keep of a network.
#pragma once

#include <string>
#include <vector>

#include <veq/veq.hpp>

#include "differences.hpp"

namespace veq::tool {

struct Losses {
  /// What comes back otherwise than it was.
  std::vector<Difference> differences;
  /// Why there is no file, or one of no use, as in "not written, because ..."; empty where it is.
  std::string total;
  /// Whether nobody can tell, because this program does not read the format.
  bool unknown = false;

  [[nodiscard]] bool isTotal() const { return !total.empty(); }
  /// Whether something is gone, in part or in total.
  [[nodiscard]] bool loses() const;
};

/// A file of a network, and what it does not keep.
struct Written {
  std::string bytes;
  Losses losses;
};

/// Writes the network as a file of the format would be, reads that back and compares. With a table
/// of vertices beside it a CSV file loses nothing of them. O(length of the file).
[[nodiscard]] Written writtenAs(const Shared<VEQNetwork>& network, FileFormat format,
                                bool withVertexTable = false);

/// Which formats keep everything and what else would help, to be said behind why a file was not
/// written: "; .graphml and .veqa keep everything". O(length of both).
[[nodiscard]] std::string wayOut(const Shared<VEQNetwork>& network);

}  // namespace veq::tool
