#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <new>
#include <span>
#include <vector>

#include "veq/base/internal/memory.hpp"

namespace veq::internal {

/// What an agent with memory starts with.
struct AgentAbility {
  std::uint64_t ringSize;
  /// Draws below this make the agent remember a wrong vertex.
  std::uint32_t errorThreshold;
};

/// What the agents remember: for each a ring of vertices and, so that membership costs O(1), how
/// many slots of the ring hold each vertex. The counts lie in a hash table of at most four times
/// the ring's slots, or in one of all vertices where that is smaller, so that memory follows the
/// rings and not the network. Words hold a vertex plus 1; 0 is an empty slot.
template <class Word>
class AgentMemories {
 public:
  /// std::bad_alloc where memory cannot hold the rings.
  AgentMemories(std::uint64_t vertices, std::span<const AgentAbility> abilities) {
    agents_.reserve(abilities.size());
    std::uint64_t slots = 0;
    std::uint64_t counts = 0;
    for (const AgentAbility& ability : abilities) {
      Agent agent;
      agent.errorThreshold = ability.errorThreshold;
      agent.ringSize = ability.ringSize;
      agent.ringStart = slots;
      agent.tableStart = counts;
      agent.layTable(vertices);
      slots = sum(slots, agent.ringSize);
      counts = sum(counts, agent.tableMask + 1);
      agents_.push_back(agent);
    }
    rings_ = Block<Word>(slots);
    tables_ = Block<Count>(counts);
  }

  [[nodiscard]] bool isMistaken(std::uint64_t agent, std::uint32_t draw) const {
    return draw < agents_[agent].errorThreshold;
  }
  [[nodiscard]] bool remembers(std::uint64_t agent, std::uint64_t vertex) const {
    const Agent& self = agents_[agent];
    return table(self)[find(self, static_cast<Word>(vertex + 1))].vertex != 0;
  }

  /// The agent's own visit takes the next slot. With an agents network it is also the latest that
  /// the agent may offer, and what was waiting in the slot to be offered is skipped.
  void remember(std::uint64_t agent, std::uint64_t vertex, bool offered) {
    Agent& self = agents_[agent];
    self.current = self.next(self.current);
    if (offered) {
      self.last = self.current;
      if (self.current == self.transfer) self.transfer = self.next(self.transfer);
    }
    store(self, static_cast<Word>(vertex + 1));
  }

  /// One agent's turn to share: the first entry, from where it stopped, that some neighbour lacks
  /// goes to all neighbours that lack it. `forEachNeighbour(f)` calls f for the agents that it is
  /// linked to. The turn ends at the agent's own latest entry, which is offered again next time.
  /// Answers whether anything changed.
  template <class ForEachNeighbour>
  bool share(std::uint64_t agent, ForEachNeighbour forEachNeighbour) {
    Agent& self = agents_[agent];
    bool changed = false;
    for (;;) {
      // Of what may be overwritten while it is given away.
      const Word entry = rings_[self.ringStart + self.transfer];
      bool given = false;
      if (entry != 0) {
        forEachNeighbour([&](std::uint64_t neighbour) { given |= receive(neighbour, entry); });
      }
      changed |= given;
      if (self.transfer == self.last) return changed;
      self.transfer = self.next(self.transfer);
      changed = true;
      if (given) return changed;
    }
  }

  /// Calls f for each vertex that the agent remembers, from the oldest entry of its ring on; for
  /// one that stands there several times that often.
  template <class F>
  void forEachRemembered(std::uint64_t agent, F f) const {
    const Agent& self = agents_[agent];
    std::uint64_t slot = self.current;
    do {
      slot = self.next(slot);
      if (const Word entry = rings_[self.ringStart + slot]; entry != 0) f(std::uint64_t{entry} - 1);
    } while (slot != self.current);
  }

  /// Places in a ring: of the latest entry, of the agent's own latest, and of what it offers next.
  struct Slots {
    std::uint64_t current = 0;
    std::uint64_t last = 0;
    std::uint64_t transfer = 0;
    friend bool operator==(const Slots&, const Slots&) = default;
  };
  /// \name What one agent has
  /// @{
  [[nodiscard]] const Slots& slots(std::uint64_t agent) const { return agents_[agent]; }
  [[nodiscard]] std::span<const Word> ring(std::uint64_t agent) const {
    return {rings_.data() + agents_[agent].ringStart, agents_[agent].ringSize};
  }
  [[nodiscard]] std::uint32_t errorThreshold(std::uint64_t agent) const {
    return agents_[agent].errorThreshold;
  }
  /// Whether it has remembered nothing yet: the latest entry lies in slot 0 again only after all
  /// slots were filled.
  [[nodiscard]] bool isFresh(std::uint64_t agent) const {
    return slots(agent) == Slots() && ring(agent)[0] == 0;
  }
  /// @}

  /// All that the future of the memories depends on.
  struct State {
    std::vector<Slots> slots;
    Block<Word> rings;
  };
  /// std::bad_alloc where memory cannot hold it.
  [[nodiscard]] State state() const {
    State copy{{agents_.begin(), agents_.end()}, Block<Word>(rings_.size())};
    std::copy_n(rings_.data(), rings_.size(), copy.rings.data());
    return copy;
  }
  [[nodiscard]] bool isIn(const State& state) const {
    return std::equal(agents_.begin(), agents_.end(), state.slots.begin(),
                      [](const Slots& a, const Slots& b) { return a == b; }) &&
           std::equal(rings_.data(), rings_.data() + rings_.size(), state.rings.data());
  }

 private:
  struct Count {
    Word vertex;
    Word slots;
  };
  struct Agent : Slots {
    std::uint64_t ringStart = 0;
    std::uint64_t ringSize = 0;
    std::uint64_t tableStart = 0;
    std::uint64_t tableMask = 0;
    std::uint64_t multiplier = 1;
    unsigned shift = 0;
    std::uint32_t errorThreshold = 0;

    [[nodiscard]] std::uint64_t next(std::uint64_t slot) const {
      return slot + 1 == ringSize ? 0 : slot + 1;
    }
    // A table of all vertices needs no hashing: each has its own place.
    void layTable(std::uint64_t vertices) {
      constexpr std::uint64_t kMost = std::uint64_t{1} << 60;
      if (ringSize > kMost || vertices > kMost) throw std::bad_alloc();
      const std::uint64_t all = std::bit_ceil(std::max<std::uint64_t>(vertices, 1));
      const std::uint64_t hashed = std::bit_ceil(2 * ringSize);
      tableMask = std::min(all, hashed) - 1;
      if (hashed >= all) return;
      multiplier = 0x9E3779B97F4A7C15u;
      shift = static_cast<unsigned>(std::countl_zero(tableMask));
    }
    [[nodiscard]] bool isHashed() const { return shift != 0; }
    [[nodiscard]] std::uint64_t home(Word entry) const {
      return ((std::uint64_t{entry} - 1) * multiplier) >> shift;
    }
  };

  static std::uint64_t sum(std::uint64_t a, std::uint64_t b) {
    if (b > std::numeric_limits<std::uint64_t>::max() - a) throw std::bad_alloc();
    return a + b;
  }

  [[nodiscard]] Count* table(const Agent& agent) { return tables_.data() + agent.tableStart; }
  [[nodiscard]] const Count* table(const Agent& agent) const {
    return tables_.data() + agent.tableStart;
  }

  // The place of the entry in the table, or the empty one where it belongs. A ring has at most half
  // as many slots as its hash table has places, so that there always is an empty one.
  [[nodiscard]] std::uint64_t find(const Agent& agent, Word entry) const {
    const Count* counts = table(agent);
    std::uint64_t place = agent.home(entry);
    while (counts[place].vertex != entry && counts[place].vertex != 0) {
      place = (place + 1) & agent.tableMask;
    }
    return place;
  }

  void store(Agent& agent, Word entry) {
    Word& slot = rings_[agent.ringStart + agent.current];
    if (slot != 0) forget(agent, slot);
    slot = entry;
    Count& count = table(agent)[find(agent, entry)];
    count.vertex = entry;
    ++count.slots;
  }

  void forget(const Agent& agent, Word entry) {
    Count* counts = table(agent);
    std::uint64_t hole = find(agent, entry);
    if (--counts[hole].slots != 0) return;
    if (!agent.isHashed()) {
      counts[hole].vertex = 0;
      return;
    }
    // Those behind the hole that were pushed past it move up, so that they are found again. Without
    // hashing nothing is ever pushed, and a full table would be walked from end to end in vain.
    for (std::uint64_t place = hole;;) {
      counts[hole].vertex = 0;
      do {
        place = (place + 1) & agent.tableMask;
        if (counts[place].vertex == 0) return;
      } while (((place - agent.home(counts[place].vertex)) & agent.tableMask) <
               ((place - hole) & agent.tableMask));
      counts[hole] = counts[place];
      counts[place].slots = 0;
      hole = place;
    }
  }

  bool receive(std::uint64_t agent, Word entry) {
    Agent& self = agents_[agent];
    if (table(self)[find(self, entry)].vertex != 0) return false;
    self.current = self.next(self.current);
    if (self.current == self.transfer) self.transfer = self.next(self.transfer);
    if (self.current == self.last) self.last = self.next(self.last);
    store(self, entry);
    return true;
  }

  std::vector<Agent> agents_;
  Block<Word> rings_;
  Block<Count> tables_;
};

}  // namespace veq::internal
