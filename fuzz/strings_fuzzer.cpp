// The constructors from texts of names: one byte chooses among them, one the weights, and the texts
// follow, with a byte between them that is in no UTF-8.
#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "fuzz/support/input.hpp"
#include "fuzz/support/invariants.hpp"
#include "fuzz/support/target.hpp"
#include "veq/base/internal/encodings.hpp"

namespace veq::fuzz {
namespace {

using Lines = std::vector<std::string>;

Lines pieces(std::string_view text, char separator) {
  Lines result;
  for (;;) {
    const std::size_t end = text.find(separator);
    result.emplace_back(text.substr(0, end));
    if (end == text.npos) return result;
    text.remove_prefix(end + 1);
  }
}

/// What an input asks for.
struct Request {
  bool withLinks;  // texts of sources and targets instead of a text of edges
  bool withVertices;
  bool directed;
  std::string_view vertices;
  std::string_view edgesOrFrom;
  std::string_view to;
  Owned<VEQNumberArray> verticesWeights;
  Owned<VEQNumberArray> edgesWeights;
};

// None, as many as there are lines, or one more; whole numbers, so that no format rounds them.
Owned<VEQNumberArray> weightsFor(std::uint64_t choice, std::string_view text) {
  if (choice % 3 == 0) return nullptr;
  const auto lines = static_cast<std::uint64_t>(std::count(text.begin(), text.end(), '\n')) + 1;
  return VEQNumberArray::initWithFloatScalar_count(2.0F, lines + (choice % 3 == 2 ? 1 : 0));
}

Request decode(Input input) {
  Request request;
  const std::uint8_t flags = input.byte();
  request.withLinks = (flags & 1) != 0;
  request.withVertices = !request.withLinks || (flags & 2) != 0;
  request.directed = (flags & 4) != 0;
  const std::uint8_t weights = input.byte();
  request.vertices = input.textUntil('\xFE');
  request.edgesOrFrom = input.textUntil('\xFE');
  request.to = input.rest();
  request.verticesWeights = weightsFor(weights, request.vertices);
  request.edgesWeights = weightsFor(weights / 3, request.edgesOrFrom);
  return request;
}

Owned<VEQNetwork> build(const Request& request) {
  if (!request.withLinks) {
    return VEQNetwork::initWithVerticesString_edgesString_directed_verticesWeights_edgesWeights(
        request.vertices, request.edgesOrFrom, request.directed, request.verticesWeights.get(),
        request.edgesWeights.get());
  }
  const auto vertices =
      request.withVertices ? std::optional(request.vertices) : std::optional<std::string_view>();
  return VEQNetwork::
      initWithVerticesString_fromLinksString_toLinksString_directed_verticesWeights_edgesWeights(
          vertices, request.edgesOrFrom, request.to, request.directed,
          request.verticesWeights.get(), request.edgesWeights.get());
}

struct Expected {
  bool throws = false;
  std::optional<NetworkImage> network;
};

void addName(Lines& names, const std::string& name) {
  if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
}

bool fits(const Owned<VEQNumberArray>& weights, std::size_t count) {
  return !weights || weights->count() == count;
}

// The network by the plainest code.
Expected expectedOf(const Request& request) {
  Lines sources = pieces(request.edgesOrFrom, '\n');
  Lines targets = request.withLinks ? pieces(request.to, '\n') : sources;
  if (sources.size() != targets.size()) return {};
  Lines names = pieces(request.vertices, '\n');
  if (!request.withVertices) {
    names.clear();
    for (std::size_t i = 0; i < sources.size(); ++i) {
      addName(names, sources[i]);
      addName(names, targets[i]);
    }
  }
  if (!fits(request.verticesWeights, names.size())) return {};
  if (!fits(request.edgesWeights, sources.size())) return {};
  for (std::size_t i = 0; !request.withLinks && i < sources.size(); ++i) {
    const Lines ends = pieces(sources[i], ' ');
    if (ends.size() < 2) return {true, {}};
    sources[i] = ends[0];
    targets[i] = ends[1];
  }

  NetworkImage image;
  const auto indexOf = [&names](const std::string& name) -> std::uint64_t {
    const auto at = std::find(names.begin(), names.end(), name);
    return at == names.end() ? 0 : static_cast<std::uint64_t>(at - names.begin());
  };
  for (std::size_t i = 0; i < sources.size(); ++i) {
    image.topology.edges.emplace_back(indexOf(sources[i]), indexOf(targets[i]));
  }
  image.topology.vertexCount = names.size();
  image.topology.directed = request.directed;
  if (request.verticesWeights) image.topology.verticesWeights.emplace(names.size(), 2.0F);
  if (request.edgesWeights) image.topology.edgesWeights.emplace(sources.size(), 2.0F);
  ColumnImage column;
  for (const std::string& name : names) column.values.emplace_back(name);
  image.ofVertices["Name"] = std::make_shared<ColumnImage>(std::move(column));
  return {false, std::move(image)};
}

bool isUtf8(const Request& request) {
  return (!request.withVertices || internal::isValidUtf8(request.vertices)) &&
         internal::isValidUtf8(request.edgesOrFrom) &&
         (!request.withLinks || internal::isValidUtf8(request.to));
}

void run(const Request& request) {
  const Expected expected = isUtf8(request) ? expectedOf(request) : Expected();
  Owned<VEQNetwork> network;
  try {
    network = build(request);
    VEQ_CHECK(!expected.throws);
  } catch (const std::out_of_range&) {
    VEQ_CHECK(expected.throws);
  }
  VEQ_CHECK((network != nullptr) == expected.network.has_value());
  if (!network) return;
  VEQ_CHECK_NO(difference(*expected.network, imageOf(*network)));
  checkNetwork(*network);
  checkRoundTrip(*network, request.edgesOrFrom.size());
}

}  // namespace
}  // namespace veq::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  veq::fuzz::silenceTheLog();
  veq::fuzz::run(veq::fuzz::decode(veq::fuzz::Input(data, size)));
  return 0;
}
