#pragma once

#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "tests/support/literal_walk.hpp"

namespace veq::test {

/// A group of agents with memory word for word: a dense table of counts and a ring for each agent,
/// three arrays of numbers drawn beforehand. The judge of the library's own group.
class LiteralDynamicGroup final : public LiteralGroup {
 public:
  /// The agents network, which may be null, is read as it is at the time.
  LiteralDynamicGroup(const LiteralNetwork& network, const std::vector<std::uint64_t>& start,
                      const LiteralNetwork* agentsNetwork, std::vector<float> errors,
                      std::vector<std::uint64_t> memorySizes)
      : LiteralGroup(network, start),
        verticesCount_(network.n),
        countAgents_(start.size()),
        errors_(std::move(errors)),
        memorySizes_(std::move(memorySizes)),
        last_(countAgents_),
        transfer_(countAgents_),
        current_(countAgents_) {
    if (agentsNetwork && agentsNetwork->n >= countAgents_) agentsNetwork_ = agentsNetwork;
    for (std::size_t a = 0; a < countAgents_; ++a) {
      if (agentsNetwork_) memorySizes_[a] *= agentsNetwork_->lists()[a].size() + 1;
      memory_.emplace_back(memorySizes_[a]);
      visited_.emplace_back(verticesCount_);
    }
  }

 private:
  void draw(LiteralRandom& random, std::size_t count) override {
    choices_ = numbers(random, count);
    errorTests_ = numbers(random, count);
    wrongVertices_ = numbers(random, count);
    if (agentsNetwork_) links_ = agentsNetwork_->lists();
  }

  std::uint64_t choose(std::size_t a, const List& list, std::size_t number) override {
    List candidates;
    for (const std::uint64_t neighbour : list) {
      if (visited_[a][neighbour] == 0) candidates.push_back(neighbour);
    }
    return entryOf(candidates.empty() ? list : candidates, choices_[number]);
  }

  void remember(std::size_t a, std::uint64_t w, std::size_t number) override {
    std::uint64_t u = w;
    if (static_cast<double>(errors_[a]) > errorTests_[number]) {
      u = static_cast<std::uint64_t>(
          std::round(static_cast<double>(verticesCount_ - 1) * wrongVertices_[number]));
    }
    current_[a] = next(a, current_[a]);
    if (agentsNetwork_) {
      last_[a] = current_[a];
      if (current_[a] == transfer_[a]) transfer_[a] = next(a, transfer_[a]);
    }
    const std::uint64_t e = memory_[a][current_[a]];
    if (e != 0 && visited_[a][e - 1] > 0) --visited_[a][e - 1];
    ++visited_[a][u];
    memory_[a][current_[a]] = u + 1;
  }

  void share() override {
    if (!agentsNetwork_) return;
    for (std::size_t a = 0; a < countAgents_; ++a) {
      while (true) {
        const std::uint64_t e = memory_[a][transfer_[a]];
        bool shared = false;
        if (e != 0) {
          for (const std::uint64_t b : links_[a]) {
            if (b >= countAgents_ || visited_[b][e - 1] != 0) continue;
            current_[b] = next(b, current_[b]);
            if (current_[b] == transfer_[b]) transfer_[b] = next(b, transfer_[b]);
            if (current_[b] == last_[b]) last_[b] = next(b, last_[b]);
            const std::uint64_t o = memory_[b][current_[b]];
            if (o != 0 && visited_[b][o - 1] > 0) --visited_[b][o - 1];
            ++visited_[b][e - 1];
            memory_[b][current_[b]] = e;
            shared = true;
          }
        }
        if (transfer_[a] == last_[a]) break;
        transfer_[a] = next(a, transfer_[a]);
        if (shared) break;
      }
    }
  }

  std::uint64_t next(std::size_t b, std::uint64_t position) const {
    return position + 1 == memorySizes_[b] ? 0 : position + 1;
  }

  std::uint64_t verticesCount_;
  std::size_t countAgents_;
  const LiteralNetwork* agentsNetwork_ = nullptr;
  std::vector<List> links_;
  std::vector<float> errors_;
  std::vector<std::uint64_t> memorySizes_;
  std::vector<std::uint64_t> last_;
  std::vector<std::uint64_t> transfer_;
  std::vector<std::uint64_t> current_;
  std::vector<std::vector<std::uint64_t>> memory_;
  std::vector<std::vector<std::uint64_t>> visited_;
  std::vector<double> errorTests_;
  std::vector<double> wrongVertices_;
};

}  // namespace veq::test
