// The bytes of an archive.
#include <algorithm>
#include <vector>

#include "fuzz/support/input.hpp"
#include "fuzz/support/invariants.hpp"
#include "fuzz/support/target.hpp"
#include "veq/formats/keyed_archiver.hpp"

namespace veq::fuzz {
namespace {

// An archive of a few bytes may legally name a vertex of a large index.
bool namesWorthyVertices(VEQCoder& archive, std::string_view key) {
  const auto ends = archive.decodeNumberArray(key);
  if (!ends) return true;
  std::vector<std::uint64_t> indices(ends->count());
  ends->getUnsignedIntegerValues_count(indices.data(), indices.size());
  return std::all_of(indices.begin(), indices.end(), isWorthBuilding);
}

void run(std::string_view bytes) {
  VEQKeyedUnarchiver archive(bytes);
  if (!namesWorthyVertices(archive, "VEQ.xnet.fromList")) return;
  if (!namesWorthyVertices(archive, "VEQ.xnet.toList")) return;
  const auto network = VEQNetwork::initWithCoder(archive);
  if (!network) return;
  VEQ_CHECK(archive.isValid());
  checkNetwork(*network);
  checkArchiveRoundTrip(*network);
  checkRoundTrip(*network, bytes.size());
}

}  // namespace
}  // namespace veq::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  veq::fuzz::silenceTheLog();
  veq::fuzz::run(veq::fuzz::textOf(data, size));
  return 0;
}
