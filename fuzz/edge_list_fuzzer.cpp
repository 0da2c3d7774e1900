// The text of an edge list, behind one byte for the direction.
#include <optional>
#include <stdexcept>
#include <string>

#include "fuzz/support/input.hpp"
#include "fuzz/support/invariants.hpp"
#include "fuzz/support/target.hpp"
#include "veq/base/internal/encodings.hpp"

namespace veq::fuzz {
namespace {

struct Outcome {
  bool threw = false;
  std::optional<NetworkImage> network;
};

Outcome read(std::string_view text, bool directed) {
  Outcome outcome;
  try {
    const auto network = VEQNetwork::initWithEdgesListString_directed(text, directed);
    if (network) outcome.network = imageOf(*network);
  } catch (const std::out_of_range&) {
    outcome.threw = true;
  }
  return outcome;
}

// Blanks around the text say nothing, nor does the kind of the line ends.
void checkBlanks(std::string_view text, bool directed, const Outcome& expected) {
  std::string other = " \n";
  for (const char byte : text) other += byte == '\n' ? std::string("\r\n") : std::string(1, byte);
  const Outcome outcome = read(other + "\n\t", directed);
  VEQ_CHECK(outcome.threw == expected.threw);
  VEQ_CHECK(outcome.network.has_value() == expected.network.has_value());
  if (outcome.network) VEQ_CHECK_NO(difference(*expected.network, *outcome.network));
}

void run(bool directed, std::string_view text) {
  const Outcome outcome = read(text, directed);
  VEQ_CHECK(outcome.network || outcome.threw || !internal::isValidUtf8(text));
  checkBlanks(text, directed, outcome);
  if (!outcome.network) return;
  const auto network = VEQNetwork::initWithEdgesListString_directed(text, directed);
  VEQ_CHECK(network->isDirected() == directed);
  VEQ_CHECK(network->countEdges() > 0);
  VEQ_CHECK(outcome.network->ofVertices.at("Name")->values.size() == network->countVertices());
  checkNetwork(*network);
  checkEdgeListRoundTrip(*network);
  checkRoundTrip(*network, text.size());
}

}  // namespace
}  // namespace veq::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  veq::fuzz::silenceTheLog();
  veq::fuzz::Input input(data, size);
  const bool directed = input.flag();
  veq::fuzz::run(directed, input.rest());
  return 0;
}
