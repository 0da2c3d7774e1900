#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "veq/formats/internal/read_context.hpp"
#include "veq/formats/internal/text_columns.hpp"
#include "veq/network/internal/network_draft.hpp"

namespace veq::internal {

/// The lines of a Pajek file, from several sections, on their way to the edges of one network.
class PajekEdges {
 public:
  /// What holds for the lines from here on.
  void begin(bool arcs, std::optional<std::int64_t> relation, std::string_view relationName);
  void setLayer(std::int64_t layer);

  /// Vertices are numbered from 0. Answers whether the place of the weight is to be told, as of the
  /// first that a float does not hold.
  bool append(std::uint64_t from, std::uint64_t to, double weight, std::size_t length) {
    from_.push_back(from);
    to_.push_back(to);
    if (hasLayers_) layers_.resize(from_.size(), layer_);
    return weights_.append(weight, length);
  }
  void setWeightPlace(Place place) { weights_.setPlace(place); }
  void reserve(std::uint64_t edges);
  [[nodiscard]] std::uint64_t count() const { return from_.size(); }

  // For LinesAhead, where no line has a layer
  [[nodiscard]] bool hasLayers() const { return hasLayers_; }
  void clear();
  void resize(std::uint64_t edges);
  void copy(const PajekEdges& piece, std::uint64_t at);
  /// The places of the piece are those of the text behind so many lines.
  void follow(const PajekEdges& piece, std::uint64_t at, std::uint64_t lines) {
    weights_.follow(piece.weights_, at, lines);
  }

  /// Gives the draft its edges with what belongs to them. Where there are arcs as well as
  /// undirected lines, each of these becomes two arcs, and a loop one, as a note says at the place.
  void finish(NetworkDraft& draft, ReadContext& context, Place mixed, unsigned mixedCode,
              unsigned roundedCode);

 private:
  struct Run {
    std::uint64_t first;
    bool arcs;
    std::optional<std::int64_t> relation;
    std::string_view relationName;
  };

  [[nodiscard]] std::uint64_t endOf(std::size_t run) const {
    return run + 1 < runs_.size() ? runs_[run + 1].first : count();
  }
  [[nodiscard]] bool has(bool arcs) const;
  [[nodiscard]] bool directed() const;
  void setRelations(NetworkDraft& draft) const;
  void doubleUndirected();

  std::vector<Run> runs_;
  RawVector<std::uint64_t> from_;
  RawVector<std::uint64_t> to_;
  WeightColumn weights_;
  bool hasLayers_ = false;
  std::int64_t layer_ = 0;
  std::vector<std::int64_t> layers_;
};

}  // namespace veq::internal
