#include "veq/formats/internal/pajek_edges.hpp"

#include <algorithm>
#include <memory>
#include <utility>

#include "veq/numeric/generic_array.hpp"
#include "veq/numeric/number_array.hpp"

namespace veq::internal {

void PajekEdges::begin(bool arcs, std::optional<std::int64_t> relation,
                       std::string_view relationName) {
  runs_.push_back({count(), arcs, relation, relationName});
}

void PajekEdges::setLayer(std::int64_t layer) {
  hasLayers_ = true;
  layers_.resize(count(), 0);
  layer_ = layer;
}

void PajekEdges::reserve(std::uint64_t edges) {
  from_.reserve(edges);
  to_.reserve(edges);
  weights_.reserve(edges);
}

void PajekEdges::clear() {
  from_.clear();
  to_.clear();
  weights_.clear();
}

void PajekEdges::resize(std::uint64_t edges) {
  from_.resize(edges);
  to_.resize(edges);
  weights_.resize(edges);
}

void PajekEdges::copy(const PajekEdges& piece, std::uint64_t at) {
  const auto begin = static_cast<std::ptrdiff_t>(at);
  std::copy(piece.from_.begin(), piece.from_.end(), from_.begin() + begin);
  std::copy(piece.to_.begin(), piece.to_.end(), to_.begin() + begin);
  weights_.copy(piece.weights_, at);
}

bool PajekEdges::has(bool arcs) const {
  for (std::size_t run = 0; run < runs_.size(); ++run) {
    if (runs_[run].arcs == arcs && endOf(run) > runs_[run].first) return true;
  }
  return false;
}

/// Empty sections decide only where there is no other.
bool PajekEdges::directed() const {
  if (count() != 0) return has(true);
  return !runs_.empty() &&
         std::all_of(runs_.begin(), runs_.end(), [](const Run& run) { return run.arcs; });
}

void PajekEdges::setRelations(NetworkDraft& draft) const {
  RawVector<std::int64_t> numbers(count(), 0);
  std::vector<PropertyValue> names(count());
  bool hasNumbers = false;
  bool hasNames = false;
  for (std::size_t run = 0; run < runs_.size(); ++run) {
    hasNumbers |= runs_[run].relation.has_value();
    hasNames |= !runs_[run].relationName.empty();
    for (std::uint64_t edge = runs_[run].first; edge < endOf(run); ++edge) {
      numbers[edge] = runs_[run].relation.value_or(0);
      if (!runs_[run].relationName.empty()) names[edge] = runs_[run].relationName;
    }
  }
  if (hasNumbers) {
    draft.properties.edges.set("Relation", std::make_shared<VEQNumberArray>(std::move(numbers)));
  }
  if (hasNames) {
    draft.properties.edges.set("Relation Name", std::make_shared<GenericArray>(std::move(names)));
  }
}

void PajekEdges::doubleUndirected() {
  PajekEdges doubled;
  doubled.hasLayers_ = hasLayers_;
  doubled.reserve(2 * count());
  for (std::size_t run = 0; run < runs_.size(); ++run) {
    doubled.begin(true, runs_[run].relation, runs_[run].relationName);
    for (std::uint64_t edge = runs_[run].first; edge < endOf(run); ++edge) {
      if (hasLayers_) doubled.layer_ = layers_[edge];
      const double weight = weights_.at(edge);
      doubled.append(from_[edge], to_[edge], weight, WeightColumn::kUnknownLength);
      if (runs_[run].arcs || from_[edge] == to_[edge]) continue;
      doubled.append(to_[edge], from_[edge], weight, WeightColumn::kUnknownLength);
    }
  }
  doubled.setWeightPlace(weights_.place());
  *this = std::move(doubled);
}

void PajekEdges::finish(NetworkDraft& draft, ReadContext& context, Place mixed, unsigned mixedCode,
                        unsigned roundedCode) {
  draft.directed = directed();
  if (has(true) && has(false)) {
    context.note(mixedCode, NoteKind::kTaken, mixed, [] {
      return std::string(
          "arcs and undirected edges: each edge is taken for two arcs, and a loop for one");
    });
    doubleUndirected();
  }
  if (std::any_of(runs_.begin(), runs_.end(), [](const Run& run) {
        return run.relation.has_value() || !run.relationName.empty();
      })) {
    setRelations(draft);
  }
  if (hasLayers_) {
    layers_.resize(count(), 0);
    draft.properties.edges.set("Layer", std::make_shared<VEQNumberArray>(RawVector<std::int64_t>(
                                            layers_.begin(), layers_.end())));
  }
  // Pajek writes a weight behind every line, also where none means anything.
  if (weights_.differsFromOne()) weights_.finish(draft, context, roundedCode);
  draft.from = std::move(from_);
  draft.to = std::move(to_);
}

}  // namespace veq::internal
