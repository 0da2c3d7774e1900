#include "veq/drawing/internal/page_walk.hpp"

#include <algorithm>
#include <span>

#include "veq/drawing/internal/checksum.hpp"
#include "veq/natural/internal/core_of.hpp"

namespace veq::internal {
namespace {

constexpr std::uint64_t kMostCounted = (std::uint64_t{1} << 53) - 1;
/// How far a list is looked through for the entry of a move.
constexpr std::uint64_t kNearEntries = 4096;

enum Restarts : std::uint8_t { kNoRestarts, kOwnWords, kSameWords };
enum Move : std::uint8_t { kStay, kElsewhere, kFirstEntry };

std::uint32_t checksum(std::span<const std::uint64_t> numbers) {
  Crc32 sum;
  sum.add(numbers);
  return sum.value();
}

// What is recorded needs no homes, since the moves tell all.
Restarts restartsOf(const RecordedWalk& walk) {
  if (walk.restartThreshold == 0 || !walk.memories.empty()) return kNoRestarts;
  return walk.restartWords ? kOwnWords : kSameWords;
}

void writeAll(ByteWriter& out, std::span<const std::uint64_t> numbers) {
  for (const std::uint64_t number : numbers) out.varint(number);
}

// Which agent's move leads where, as the number of an entry where it can.
class MoveWriter {
 public:
  MoveWriter(ByteWriter& out, const Network& network, const RecordedWalk& walk)
      : out_(out), store_(coreOf(network).store), at_(walk.starts) {}

  void stay() { out_.varint(kStay); }

  void arrive(std::uint64_t agent, std::uint64_t to) {
    const std::optional<std::uint64_t> entry = entryOf(at_[agent], to);
    at_[agent] = to;
    if (entry) return out_.varint(kFirstEntry + *entry);
    out_.varint(kElsewhere);
    out_.varint(to);
  }

 private:
  [[nodiscard]] std::optional<std::uint64_t> entryOf(std::uint64_t from, std::uint64_t to) const {
    return store_.visit([&](const auto& topology) -> std::optional<std::uint64_t> {
      const auto list = topology.out.neighbours(from);
      const std::uint64_t near = std::min<std::uint64_t>(list.size(), kNearEntries);
      for (std::uint64_t entry = 0; entry < near; ++entry) {
        if (list[entry] == to) return entry;
      }
      return std::nullopt;
    });
  }

  ByteWriter& out_;
  const AdjacencyStore& store_;
  std::vector<std::uint64_t> at_;
};

}  // namespace

ByteWriter walkPart(const RecordedWalk& walk) {
  const Restarts restarts = restartsOf(walk);
  ByteWriter out;
  out.u8(static_cast<std::uint8_t>(walk.choice));
  out.u8(walk.memories.empty() ? 0 : 1);
  out.u8(static_cast<std::uint8_t>(walk.outcome.end));
  out.u8(restarts);
  out.u32(restarts == kNoRestarts ? 0 : walk.restartThreshold);
  for (const std::uint32_t word : walk.words) out.u32(word);
  if (restarts == kOwnWords) {
    for (const std::uint32_t word : *walk.restartWords) out.u32(word);
  }
  out.varint(walk.countAgents());
  out.varint(walk.outcome.steps);
  out.varint(std::min(walk.asked.value_or(0), kMostCounted));
  out.f64(walk.target);
  writeAll(out, walk.starts);
  if (restarts != kNoRestarts) writeAll(out, walk.homes);
  out.u32(checksum(walk.arrivals));
  out.u32(checksum(walk.ends));
  return out;
}

ByteWriter movesPart(const Network& network, const RecordedWalk& walk) {
  ByteWriter out;
  MoveWriter writer(out, network, walk);
  const std::uint64_t agents = walk.countAgents();
  walk.outcome.paths->visitArrivals([&](const auto arrivals) {
    for (std::uint64_t number = 0; number < arrivals.size(); ++number) {
      const auto to = arrivals[number];
      if (to >= walk.vertices) {  // all bits, where the agent stayed
        writer.stay();
      } else {
        writer.arrive(number % agents, to);
      }
    }
  });
  out.varint(walk.mistakes.size());
  std::uint64_t before = 0;
  for (const auto& [number, vertex] : walk.mistakes) {
    out.varint(number - before);
    out.varint(vertex);
    before = number;
  }
  return out;
}

ByteWriter memoriesPart(const RecordedWalk& walk) {
  ByteWriter out;
  for (const RecordedMemory& memory : walk.memories) {
    out.varint(std::min(memory.ringSize, kMostCounted));
  }
  out.u8(walk.haveListeners ? 1 : 0);
  for (const RecordedMemory& memory : walk.memories) {
    if (!walk.haveListeners) break;
    out.varint(memory.listeners.size());
    writeAll(out, memory.listeners);
  }
  for (const RecordedMemory& memory : walk.memories) {
    out.u8(memory.ring.empty() ? 0 : 1);
    if (memory.ring.empty()) continue;
    out.varint(memory.slots.current);
    out.varint(memory.slots.last);
    out.varint(memory.slots.transfer);
    writeAll(out, memory.ring);
  }
  return out;
}

}  // namespace veq::internal
