#include "losses.hpp"

#include <algorithm>
#include <cstdint>
#include <new>
#include <unordered_set>
#include <utility>

#include "format.hpp"
#include "reader.hpp"
#include "suggestions.hpp"
#include "text.hpp"
#include "vertex_names.hpp"

namespace veq::tool {
namespace {

/// Why a file of the format could not be read back.
std::string totalLoss(const VEQNetwork& network, FileFormat format) {
  switch (format) {
    case FileFormat::kXnet:
      if (const std::uint64_t nameless = countNameless(network); nameless > 0) {
        return counted(nameless, "vertex has no name", "vertices have no name") +
               ", which xnet cannot hold where others have one";
      }
      return "it could not be read back: it has an empty property key";
    case FileFormat::kList:
    case FileFormat::kCsv:
      return "a list without edges could not be read back";
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

void appendLostKeys(std::vector<Difference>& notes, const std::string& whose,
                    const PropertyTable& before, const PropertyTable& after) {
  for (const auto& entry : before) {
    if (after.contains(entry.first)) continue;
    notes.push_back({"the " + whose + " property \"" + entry.first + "\" is lost"});
  }
}

/// How many of the integers that vertices are called by are not among those of the list.
std::uint64_t countLostIds(const PropertyTable& before, const PropertyTable& after) {
  const auto textsIn = [](const PropertyTable& table) {
    std::unordered_set<std::string> texts;
    const auto* const ids = table.find("Id");
    for (std::uint64_t i = 0; ids && i < (*ids)->count(); ++i) {
      texts.insert((*ids)->objectAtIndex(i).text());
    }
    return texts;
  };
  const auto are = textsIn(after);
  std::uint64_t lost = 0;
  for (const std::string& id : textsIn(before)) lost += are.count(id) == 0;
  return lost;
}

/// A list has its vertices in an order of its own, so that comparing one by one would say nothing.
std::vector<Difference> listDifferences(const VEQNetwork& network, const VEQNetwork& back,
                                        bool withVertexTable) {
  std::vector<Difference> all;
  const auto vertices = network.propertiesOfVertices();
  const auto verticesBack = back.propertiesOfVertices();
  if (network.isDirected() && !back.isDirected()) {
    all.push_back({"the direction of edges is lost without --directed", false});
  }
  const Difference weights = edgeWeightsDifference(network, back);
  if (!weights.text.empty()) all.push_back(weights);
  for (Difference& difference : edgeColumnDifferences(network, back)) {
    all.push_back(std::move(difference));
  }
  if (withVertexTable) return all;
  if (const std::uint64_t lost = network.countVertices() - back.countVertices(); lost > 0) {
    all.push_back(
        {counted(lost, "vertex without edges is lost", "vertices without edges are lost")});
  }
  if (!vertices->contains("Id") && !haveSameIndices(back)) {
    all.push_back({"vertices come back with other indices", false});
  }
  if (network.isVertexWeighted()) all.push_back({"the weights of vertices are lost"});
  appendLostKeys(all, "vertex", *vertices, *verticesBack);
  if (verticesBack->contains("Id") && countLostIds(*vertices, *verticesBack) > 0) {
    all.push_back({"the vertex property \"Id\" is lost"});
  }
  return all;
}

Losses lossesOf(const VEQNetwork& network, FileFormat format, const std::string& bytes,
                bool withVertexTable) {
  ReadOptions options;
  options.format = format == FileFormat::kCsv ? FileFormat::kList : format;
  // What the network has is no reason to refuse it.
  options.mostVertices = std::max(network.countVertices(), std::uint64_t{1'000'000});
  const Reading reading = reader::readNetworkText(bytes, options);
  if (!reading) {
    const ErrorKind kind = reading.error().kind();
    if (kind == ErrorKind::kMemory) throw std::bad_alloc();
    if (kind == ErrorKind::kUnsupported) return {{}, {}, true};
    return {{}, totalLoss(network, format)};
  }
  const VEQNetwork& back = *reading.value().published();
  return {isList(format) ? listDifferences(network, back, withVertexTable)
                         : differencesBetween(network, back),
          {}};
}

}  // namespace

bool Losses::loses() const {
  return isTotal() || std::any_of(differences.begin(), differences.end(),
                                  [](const Difference& each) { return each.loses; });
}

Written writtenAs(const Shared<VEQNetwork>& network, FileFormat format, bool withVertexTable) {
  Result<std::string> text = networkText(Network(network), format);
  if (!text) {
    if (text.error().kind() == ErrorKind::kMemory) throw std::bad_alloc();
    return {{}, {{}, text.error().text()}};
  }
  Losses losses = lossesOf(*network, format, text.value(), withVertexTable);
  return {std::move(text).value(), std::move(losses)};
}

std::string wayOut(const Shared<VEQNetwork>& network) {
  std::vector<std::string> keeping;
  for (const FileFormat format : {FileFormat::kGraphMl, FileFormat::kArchive}) {
    const Losses losses = writtenAs(network, format).losses;
    if (!losses.unknown && !losses.loses()) keeping.emplace_back(suffixOf(format));
  }
  std::string text;
  if (!keeping.empty()) {
    text = "; " + wordList(keeping) + (keeping.size() == 1 ? " keeps" : " keep") + " everything";
  }
  if (countNameless(*network) > 0) {
    text += "; --number-names gives names to vertices that have none";
  }
  return text;
}

}  // namespace veq::tool
