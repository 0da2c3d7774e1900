#include "losses.hpp"

#include <cstdint>
#include <utility>

#include "differences.hpp"
#include "edge_list.hpp"
#include "text.hpp"

namespace veq::tool {
namespace {

Owned<VEQNetwork> archivedAndBack(const VEQNetwork& network) {
  VEQKeyedArchiver archiver;
  network.encodeWithCoder(archiver);
  VEQKeyedUnarchiver unarchiver(archiver.bytes());
  return VEQNetwork::initWithCoder(unarchiver);
}

Losses comparison(const VEQNetwork& network, const Owned<VEQNetwork>& back, std::string total) {
  if (!back) return {{}, std::move(total)};
  return {differencesBetween(network, *back), {}};
}

/// Text of ISO-8859-1, converted from UTF-8; false where it holds other characters.
bool toLatin1(std::string_view text, std::string& bytes) {
  if (!isUtf8(text)) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte >= 0xc4) return false;
    if (byte < 0x80) {
      bytes += text[i];
    } else {
      ++i;
      bytes += static_cast<char>((byte & 0x03) << 6 | (text[i] & 0x3f));
    }
  }
  return true;
}

Losses pajekLosses(const VEQNetwork& network) {
  const std::string text = network.pajekFormattedStringValue();
  std::string bytes;
  if (!toLatin1(text, bytes)) {
    return {{}, "a name has characters outside ISO-8859-1"};
  }
  // Readers take what could be UTF-8 for UTF-8, also where it was meant as ISO-8859-1.
  const auto back = VEQNetwork::initWithNetworkPajekFormattedString(isUtf8(bytes) ? bytes : text);
  return comparison(network, back,
                    "it could not be read back: more names or positions than vertices");
}

/// An edge list names its vertices by index and puts them into its own order, so that comparing
/// vertex by vertex would say nothing.
Losses edgeListLosses(const VEQNetwork& network) {
  if (network.countEdges() == 0) return {{}, "a list without edges could not be read back"};
  std::vector<std::string> unused;
  const Shared<VEQNetwork> back = networkWithEdgeList("", network.edgesListFormattedStringValue(),
                                                      network.isDirected(), unused);
  std::vector<std::string> notes;
  if (const std::uint64_t lost = network.countVertices() - back->countVertices(); lost > 0) {
    notes.push_back(
        counted(lost, "vertex without edges is lost", "vertices without edges are lost"));
  }
  for (std::uint64_t i = 0; i < back->countVertices(); ++i) {
    if (vertexName(*back, i) == std::to_string(i)) continue;
    notes.push_back("vertices come back in the order of their first edges");
    break;
  }
  if (network.isDirected()) notes.push_back("the direction of edges is lost without --directed");
  if (network.isVertexWeighted()) notes.push_back("the weights of vertices are lost");
  if (const std::string weights = edgeWeightsDifference(network, *back); !weights.empty()) {
    notes.push_back(weights);
  }
  for (const std::string& key : network.keysForPropertiesOfVertices()) {
    notes.push_back("the vertex property \"" + key + "\" is lost");
  }
  for (const std::string& key : network.keysForPropertiesOfEdges()) {
    notes.push_back("the edge property \"" + key + "\" is lost");
  }
  return {notes, {}};
}

}  // namespace

Losses lossesOf(const VEQNetwork& network, Format format) {
  switch (format) {
    case Format::kXnet:
      return comparison(network,
                        VEQNetwork::initWithNetworkFormattedString(network.formattedStringValue()),
                        "it could not be read back: it has an empty name or property key");
    case Format::kArchive:
      return comparison(network, archivedAndBack(network),
                        "it could not be read back: an archive loses the vertices after the last "
                        "one with an edge, and takes weights of edges for weights of vertices");
    case Format::kPajek:
      return pajekLosses(network);
    case Format::kEdgeList:
      return edgeListLosses(network);
  }
  return {};
}

}  // namespace veq::tool
