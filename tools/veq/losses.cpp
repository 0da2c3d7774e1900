#include "losses.hpp"

#include <cstdint>
#include <new>

#include "differences.hpp"
#include "reader.hpp"
#include "text.hpp"

namespace veq::tool {
namespace {

/// Why a file of the format could not be read back.
std::string totalLoss(FileFormat format) {
  switch (format) {
    case FileFormat::kXnet:
      return "it could not be read back: it has an empty name or property key";
    case FileFormat::kList:
    case FileFormat::kCsv:
      return "a list without edges could not be read back";
    case FileFormat::kArchive:
      return "it could not be read back: an archive loses the vertices after the last one with an "
             "edge, and takes weights of edges for weights of vertices";
    default:
      return "it could not be read back";
  }
}

bool isList(FileFormat format) { return format == FileFormat::kList || format == FileFormat::kCsv; }

/// Whether every vertex still has the index that it had, which a list keeps as "Id".
bool haveSameIndices(const VEQNetwork& back) {
  const auto properties = back.propertiesOfVertices();
  const auto* const ids = properties->find("Id");
  if (!ids) return true;
  for (std::uint64_t i = 0; i < (*ids)->count(); ++i) {
    const PropertyValue id = (*ids)->objectAtIndex(i);
    if (!id.number() || id.number()->as<std::uint64_t>() != i) return false;
  }
  return true;
}

void appendLostKeys(std::vector<std::string>& notes, const std::string& whose,
                    const PropertyTable& before, const PropertyTable& after) {
  for (const auto& entry : before) {
    // "Id" is what a list calls its own numbers.
    if (after.contains(entry.first) && entry.first != "Id") continue;
    notes.push_back("the " + whose + " property \"" + entry.first + "\" is lost");
  }
}

/// A list has its vertices in an order of its own, so that comparing one by one would say nothing.
std::vector<std::string> listNotes(const VEQNetwork& network, const VEQNetwork& back) {
  std::vector<std::string> notes;
  if (const std::uint64_t lost = network.countVertices() - back.countVertices(); lost > 0) {
    notes.push_back(
        counted(lost, "vertex without edges is lost", "vertices without edges are lost"));
  }
  if (!haveSameIndices(back)) {
    notes.push_back("vertices come back with other indices");
  }
  if (network.isDirected() && !back.isDirected()) {
    notes.push_back("the direction of edges is lost without --directed");
  }
  if (network.isVertexWeighted()) notes.push_back("the weights of vertices are lost");
  if (const std::string weights = edgeWeightsDifference(network, back); !weights.empty()) {
    notes.push_back(weights);
  }
  appendLostKeys(notes, "vertex", *network.propertiesOfVertices(), *back.propertiesOfVertices());
  appendLostKeys(notes, "edge", *network.propertiesOfEdges(), *back.propertiesOfEdges());
  return notes;
}

}  // namespace

Losses lossesOf(const VEQNetwork& network, FileFormat format, const std::string& bytes) {
  ReadOptions options;
  options.format = format == FileFormat::kCsv ? FileFormat::kList : format;
  const Reading reading = reader::readNetworkText(bytes, options);
  if (!reading) {
    const ErrorKind kind = reading.error().kind();
    if (kind == ErrorKind::kMemory) throw std::bad_alloc();
    // Where there is no reader, nobody can tell.
    return {{}, kind == ErrorKind::kUnsupported ? "" : totalLoss(format)};
  }
  const VEQNetwork& back = *reading.value().published();
  return {isList(format) ? listNotes(network, back) : differencesBetween(network, back), {}};
}

}  // namespace veq::tool
