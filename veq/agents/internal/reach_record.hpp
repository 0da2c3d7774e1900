#pragma once

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <span>

#include "veq/agents/agent_information.hpp"
#include "veq/agents/internal/tiles.hpp"
#include "veq/base/internal/atomic_ref.hpp"

namespace veq::internal {

/// What share of the network walks with a reach target have stepped onto. The marks are counted as
/// they are set, and live on from walk to walk.
class ReachRecord {
 public:
  explicit ReachRecord(std::uint64_t vertices)
      : vertices_(vertices), shareOfOne_(1.0 / static_cast<double>(vertices)) {}
  ~ReachRecord() { deleteVEQAgentInformation(information_); }
  ReachRecord(const ReachRecord&) = delete;
  ReachRecord& operator=(const ReachRecord&) = delete;

  void clear() {
    deleteVEQAgentInformation(information_);
    information_ = newVEQAgentInformation();
    marked_ = 0;
  }
  /// Makes the marks, if there are none yet; std::bad_alloc where that fails.
  void prepare() {
    if (information_.visitedVertices) return;
    void* marks = std::calloc(vertices_ == 0 ? 1 : vertices_, 1);
    if (!marks) throw std::bad_alloc();
    information_.visitedVertices = static_cast<unsigned char*>(marks);
  }

  /// Whether an arrival at the vertex would leave the record as it is.
  [[nodiscard]] bool has(std::uint64_t vertex) const {
    return information_.visitedVertices[vertex] != 0;
  }
  /// Takes the steps into the record one by one until the target is met, and answers how many that
  /// were; whether it was met is in `met`. `movesOf(s)` gives the moves of one.
  template <class MovesOf>
  std::uint64_t take(const MovesOf& movesOf, std::uint64_t steps, double target, bool& met) {
    std::uint64_t taken = 0;
    while (taken < steps && !met) {
      mark(movesOf(taken));
      ++taken;
      met = isMet(target);
    }
    addSteps(taken);
    if (met) AtomicRef<bool>(information_.finished).store(true, std::memory_order_relaxed);
    return taken;
  }
  /// Counts further steps, in which nobody moved.
  void addSteps(std::uint64_t steps) {
    AtomicRef<std::uint64_t>(information_.walkCount).fetch_add(steps, std::memory_order_relaxed);
  }

  // The const_cast is what an AtomicRef needs to read.
  [[nodiscard]] bool finished() const {
    return AtomicRef<bool>(const_cast<bool&>(information_.finished))
        .load(std::memory_order_relaxed);
  }
  [[nodiscard]] std::uint64_t walkCount() const {
    return AtomicRef<std::uint64_t>(const_cast<std::uint64_t&>(information_.walkCount))
        .load(std::memory_order_relaxed);
  }

 private:
  template <class Word>
  void mark(std::span<const Word> moves) {
    if (marked_ == vertices_) return;
    // A mark is a character, which might lie in this record for all that the compiler knows: what
    // the loop needs stays outside.
    unsigned char* const marks = information_.visitedVertices;
    std::uint64_t fresh = 0;
    for (const Word to : moves) {
      if (to == kStayed<Word>) continue;
      fresh += marks[to] == 0;
      marks[to] = 1;
    }
    marked_ += fresh;
  }

  // The share is formed by multiplication, which rounds below 1 for some n even when all vertices
  // are marked; a target up to 1 must be met then.
  [[nodiscard]] bool isMet(double target) const {
    return static_cast<double>(marked_) * shareOfOne_ >= target ||
           (marked_ == vertices_ && target <= 1.0);
  }

  std::uint64_t vertices_;
  double shareOfOne_;
  std::uint64_t marked_ = 0;
  // Some 32-bit targets align its count of steps to 4 bytes only.
  alignas(8) VEQAgentInformation information_ = newVEQAgentInformation();
};

}  // namespace veq::internal
