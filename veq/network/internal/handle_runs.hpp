/// \file
/// Given handles without the handles: which network they belong to, and which indices they name.
#pragma once

#include <cstdint>
#include <vector>

#include "veq/handles/handle_array.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq::internal {

/// Neighbouring handles of one network, which may be dead.
struct HandleRun {
  const LifeRecord* life;
  std::uint64_t count;
  /// Null for 0, 1, 2, ...
  const std::uint64_t* indices;

  [[nodiscard]] std::uint64_t operator[](std::uint64_t i) const { return indices ? indices[i] : i; }
  /// Only of a network that lives.
  [[nodiscard]] const NetworkCore& core() const { return CoreAccess::of(*life->address); }
};

/// All handles of an array, as runs in its order. Refers to the array's records.
template <class Kind>
class HandleRuns {
 public:
  explicit HandleRuns(const HandleArray<Kind>& array) : count_(array.count()) {
    if (count_ == 0) return;
    if (!array.isSnapshot()) {
      indices_.resize(count_);
      for (std::uint64_t i = 0; i < count_; ++i) indices_[i] = array.identificationAtIndex(i);
    }
    if (array.table()) {
      runs_.push_back(
          {&array.table()->life(), count_, array.isSnapshot() ? nullptr : indices_.data()});
      return;
    }
    for (std::uint64_t i = 0; i < count_; ++i) {
      const LifeRecord* life = &array.handleAt(i).life();
      if (runs_.empty() || runs_.back().life != life) runs_.push_back({life, 0, &indices_[i]});
      ++runs_.back().count;
    }
  }

  // The runs point into the indices.
  HandleRuns(const HandleRuns&) = delete;
  HandleRuns& operator=(const HandleRuns&) = delete;

  [[nodiscard]] std::uint64_t count() const { return count_; }
  [[nodiscard]] const std::vector<HandleRun>& runs() const { return runs_; }

 private:
  std::uint64_t count_ = 0;
  RawVector<std::uint64_t> indices_;
  std::vector<HandleRun> runs_;
};

[[nodiscard]] inline std::uint64_t countIn(const VEQNetwork& network, const VEQVertex&) {
  return network.countVertices();
}
[[nodiscard]] inline std::uint64_t countIn(const VEQNetwork& network, const VEQEdge&) {
  return network.countEdges();
}

/// Calls ask(handle) for the handles of a network that lives which may have an objection to being
/// asked, in order: those that have been invalidated alone. Makes no handle.
template <class Kind, class Ask>
void visitInvalid(const HandleTable<Kind>& table, const HandleRun& run, Ask ask) {
  if (!table.hasMadeAny()) return;
  for (std::uint64_t i = 0; i < run.count; ++i) {
    const Kind* handle = table.find(run[i]);
    if (handle && !handle->isValid()) ask(*handle);
  }
}

/// The same for any handles, which may also belong to a dead network, or have been made by hand and
/// lie outside their network.
template <class Kind, class Ask>
void visitInvalid(const HandleArray<Kind>& array, const HandleRuns<Kind>& runs, Ask ask) {
  const auto& table = array.table();
  if (table && table->life().alive.load(std::memory_order_acquire)) {
    for (const HandleRun& run : runs.runs()) visitInvalid(*table, run, ask);
    return;
  }
  for (const Kind& handle : array) {
    if (!handle.isValid() || handle.identification() >= countIn(*handle.relatedNetwork(), handle)) {
      ask(handle);
    }
  }
}

}  // namespace veq::internal
