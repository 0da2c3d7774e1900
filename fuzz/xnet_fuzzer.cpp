// The text of an xnet file, for the published reader and for that of any file.
#include <string>
#include <string_view>

#include "fuzz/support/input.hpp"
#include "fuzz/support/invariants.hpp"
#include "fuzz/support/readings.hpp"
#include "fuzz/support/target.hpp"
#include "veq/base/internal/encodings.hpp"
#include "veq/formats/internal/xnet.hpp"

namespace veq::fuzz {
namespace {

std::string withOtherLineEnds(std::string_view text) {
  std::string result = "\n";
  for (const char byte : text) {
    if (byte == '\n') result += '\r';
    result += byte;
  }
  return result;
}

// Line ends of any kind and number count as one.
void checkLineEnds(std::string_view text, const VEQNetwork* network) {
  const auto same = VEQNetwork::initWithNetworkFormattedString(withOtherLineEnds(text));
  VEQ_CHECK((same == nullptr) == (network == nullptr));
  if (network) VEQ_CHECK_NO(difference(imageOf(*network), imageOf(*same)));
}

void run(std::string_view text) {
  // The draft of a network says how large it would become.
  if (internal::isValidUtf8(text)) {
    const auto draft = internal::readXnet(text);
    if (draft && !isWorthBuilding(draft->vertexCount)) return;
  }
  const auto network = VEQNetwork::initWithNetworkFormattedString(text);
  VEQ_CHECK(!network || internal::isValidUtf8(text));
  checkLineEnds(text, network.get());
  if (!network) return;
  checkNetwork(*network);
  checkXnetRoundTrip(*network);
  checkRoundTrip(*network, text.size());
}

}  // namespace
}  // namespace veq::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  veq::fuzz::silenceTheLog();
  const std::string_view text = veq::fuzz::textOf(data, size);
  veq::fuzz::run(text);
  veq::fuzz::checkReading(text, veq::FileFormat::kXnet);
  return 0;
}
