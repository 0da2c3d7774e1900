/// \file
/// The words that begin the sections of a Pajek file.
#pragma once

#include <array>
#include <string_view>

#include "veq/formats/internal/lines.hpp"

namespace veq::internal {

enum class PajekSection {
  kNone,
  kLeftOut,
  kNetwork,
  kVertices,
  kArcs,
  kEdges,
  kArcsList,
  kEdgesList,
  kMatrix,
  kIntra,
  kLinks,
  kStates,
  kBipartite,
  kColumn,
};

struct PajekSectionName {
  std::string_view word;
  PajekSection section;
};
inline constexpr std::array<PajekSectionName, 17> kPajekSections{
    {{"network", PajekSection::kNetwork},
     {"vertices", PajekSection::kVertices},
     {"arcs", PajekSection::kArcs},
     {"arc", PajekSection::kArcs},
     {"edges", PajekSection::kEdges},
     {"edge", PajekSection::kEdges},
     {"arcslist", PajekSection::kArcsList},
     {"arclist", PajekSection::kArcsList},
     {"edgeslist", PajekSection::kEdgesList},
     {"edgelist", PajekSection::kEdgesList},
     {"matrix", PajekSection::kMatrix},
     {"intra", PajekSection::kIntra},
     {"links", PajekSection::kLinks},
     {"states", PajekSection::kStates},
     {"bipartite", PajekSection::kBipartite},
     {"partition", PajekSection::kColumn},
     {"vector", PajekSection::kColumn}}};

[[nodiscard]] inline PajekSection pajekSectionOf(std::string_view word) {
  for (const PajekSectionName& each : kPajekSections) {
    if (sameWord(each.word, word)) return each.section;
  }
  return PajekSection::kLeftOut;
}

}  // namespace veq::internal
