#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <deque>
#include <optional>
#include <utility>
#include <vector>

#include "tests/support/literal_walk.hpp"
#include "veq/natural/choice.hpp"

namespace veq::test {

/// A walk of any choice word for word: one step after the other, lists of neighbours and weights,
/// memories as queues, all numbers looked up by their place in the sequence. The judge of
/// Walkers::walk().
struct LiteralWalkers {
  static constexpr std::uint64_t kNoStep = UINT64_MAX;

  LiteralNetwork network;
  std::vector<double> weights;  // of edges; none counts as 1 each
  std::vector<std::uint64_t> starts;
  std::vector<std::size_t> memorySizes;  // none for agents without memory
  std::vector<float> errors;
  Choice choice = Choice::kPublished;
  double restart = 0.0;

  std::vector<std::uint64_t> positions;
  std::vector<std::deque<std::uint64_t>> memories;
  std::vector<std::vector<std::uint64_t>> visits;
  std::vector<bool> reached;

  // Of the last walk.
  std::uint64_t steps = 0;
  std::vector<std::vector<std::uint64_t>> paths;  // kNoStep where an agent stayed
  std::vector<std::uint64_t> firstArrivals;

  void begin() {
    positions = starts;
    memories.assign(starts.size(), {});
    visits.assign(starts.size(), std::vector<std::uint64_t>(network.n));
    reached.assign(network.n, false);
  }

  std::size_t purposes() const {
    return (memorySizes.empty() ? 1U : 3U) + (restart > 0.0 ? 1U : 0U);
  }

  /// `asked` steps, or without a number of them at most `most`.
  void walk(std::uint32_t seed, std::optional<std::uint64_t> asked, double target,
            std::uint64_t most) {
    const std::size_t agents = starts.size();
    const std::uint64_t all = asked.value_or(most);
    LiteralRandom random(seed);
    numbers_.clear();
    for (std::uint64_t i = 0; i < purposes() * agents * all; ++i) numbers_.push_back(random.next());
    paths.assign(agents, {});
    firstArrivals.assign(network.n, kNoStep);
    for (steps = 0; steps < all;) {
      for (std::size_t a = 0; a < agents; ++a) {
        const auto number = [&](std::size_t purpose) {
          const std::size_t place = asked ? purpose * agents * all + steps * agents + a
                                          : (steps * purposes() + purpose) * agents + a;
          return numbers_[place];
        };
        const std::optional<std::uint64_t> to = next(a, number);
        paths[a].push_back(to.value_or(kNoStep));
        if (!to) continue;
        positions[a] = *to;
        ++visits[a][*to];
        if (firstArrivals[*to] == kNoStep) firstArrivals[*to] = steps + 1;
        if (target > 0.0) reached[*to] = true;
        if (!memorySizes.empty()) remember(a, *to, number);
      }
      ++steps;
      if (target <= 0.0) continue;
      const auto count = std::count(reached.begin(), reached.end(), true);
      const double share = static_cast<double>(count) * (1.0 / static_cast<double>(network.n));
      if (share >= target || static_cast<std::uint64_t>(count) == network.n) return;
    }
  }

 private:
  struct Entry {
    std::uint64_t neighbour;
    double weight;
  };

  std::vector<Entry> listOf(std::uint64_t vertex) const {
    std::vector<Entry> list;
    for (std::size_t e = 0; e < network.from.size(); ++e) {
      const double weight = weights.empty() ? 1.0 : weights[e];
      if (network.from[e] == vertex) list.push_back({network.to[e], weight});
      if (!network.directed && network.to[e] == vertex) list.push_back({network.from[e], weight});
    }
    return list;
  }

  template <class Number>
  std::optional<std::uint64_t> next(std::size_t a, Number number) const {
    if (restart > 0.0 && number(purposes() - 1) < std::ceil(restart * 0x1p31) * 0x1p-31) {
      return starts[a];
    }
    std::vector<Entry> list = listOf(positions[a]);
    if (choice == Choice::kWeighted) {
      std::erase_if(list, [](const Entry& entry) { return entry.weight == 0.0; });
    }
    std::vector<Entry> candidates;
    for (const Entry& entry : list) {
      const auto& known = memories[a];
      if (std::find(known.begin(), known.end(), entry.neighbour) != known.end()) continue;
      candidates.push_back(entry);
    }
    if (candidates.empty()) candidates = list;
    if (candidates.empty()) return std::nullopt;
    const double x = number(0);
    const auto k = static_cast<double>(candidates.size());
    if (choice == Choice::kPublished) {
      return candidates[static_cast<std::size_t>(std::round((k - 1) * x))].neighbour;
    }
    if (choice == Choice::kEven) {
      return candidates[static_cast<std::size_t>(std::floor(k * x))].neighbour;
    }
    double total = 0.0;
    for (const Entry& entry : candidates) total += entry.weight;
    double sum = 0.0;
    for (const Entry& entry : candidates) {
      sum += entry.weight;
      if (sum > total * x) return entry.neighbour;
    }
    return std::nullopt;
  }

  template <class Number>
  void remember(std::size_t a, std::uint64_t vertex, Number number) {
    const bool isWrong = static_cast<double>(errors[a]) > number(1);
    const double last = static_cast<double>(network.n) - 1;
    memories[a].push_back(isWrong ? static_cast<std::uint64_t>(std::round(last * number(2)))
                                  : vertex);
    if (memories[a].size() > memorySizes[a]) memories[a].pop_front();
  }

  std::vector<double> numbers_;
};

}  // namespace veq::test
