#pragma once

#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

namespace veq::test {

/// The numbers of the C library's random() after srandom(seed), by the textbook: every word is
/// kept.
class LiteralRandom {
 public:
  explicit LiteralRandom(std::uint32_t seed) {
    std::vector<std::int64_t> r(34);
    r[0] = static_cast<std::int32_t>(seed);
    for (std::size_t i = 1; i < 31; ++i) {
      r[i] = 16807 * r[i - 1] % 2147483647;
      if (r[i] < 0) r[i] += 2147483647;
    }
    for (std::size_t i = 31; i < 34; ++i) r[i] = r[i - 31];
    for (const std::int64_t word : r) words_.push_back(static_cast<std::uint32_t>(word));
    for (int i = 34; i < 344; ++i) word();
  }
  double next() { return static_cast<double>(word() >> 1) * 4.656612873077393e-10; }

 private:
  std::uint32_t word() {
    words_.push_back(words_[words_.size() - 3] + words_[words_.size() - 31]);
    return words_.back();
  }
  std::vector<std::uint32_t> words_;
};

/// Edges, and the out-lists that they make.
struct LiteralNetwork {
  std::uint64_t n = 0;
  bool directed = false;
  std::vector<std::uint64_t> from;
  std::vector<std::uint64_t> to;

  std::vector<std::vector<std::uint64_t>> lists() const {
    std::vector<std::vector<std::uint64_t>> out(n);
    for (std::size_t i = 0; i < from.size(); ++i) {
      out[from[i]].push_back(to[i]);
      if (!directed) out[to[i]].push_back(from[i]);
    }
    return out;
  }
};

/// A group of walking agents word for word: dense arrays, all numbers drawn beforehand, a rescan of
/// all marks after each step. The judge of the library's own walk. Groups of other agents override
/// the protected functions.
class LiteralGroup {
 public:
  using Counts = std::vector<std::int64_t>;
  using Paths = std::vector<std::vector<std::uint64_t>>;
  using List = std::vector<std::uint64_t>;

  LiteralGroup(const LiteralNetwork& network, std::vector<std::uint64_t> start)
      : out_(network.lists()), positions(std::move(start)), agents_(positions.size()) {
    reset(-1);
  }
  virtual ~LiteralGroup() = default;

  Paths walk(LiteralRandom& random, std::uint64_t steps, float untilReach) {
    const std::size_t n = out_.size();
    draw(random, agents_ * steps);
    Paths buffers(agents_, std::vector<std::uint64_t>(steps));
    if (untilReach > 0.0F && marks_.empty()) marks_.assign(n, 0);
    progress = 0;
    for (std::uint64_t s = 0; s < steps; ++s) {
      for (std::size_t a = 0; a < agents_; ++a) {
        const List& list = out_[positions[a]];
        const auto k = static_cast<std::int64_t>(list.size());
        if (k <= 0) continue;
        const std::uint64_t w = choose(a, list, agents_ * s + a);
        positions[a] = w;
        buffers[a][s] = w;
        if (untilReach > 0.0F) marks_[w] = 1;
        remember(a, w, agents_ * s + a);
        orders[a][w] = ++stamps_[a];
        ++visits[a][w];
      }
      progress = s + 1;
      share();
      if (untilReach > 0.0F) {
        std::uint64_t reached = 0;
        for (const unsigned char mark : marks_) reached += mark != 0;
        ++walkCount;
        const double share = static_cast<double>(reached) * (1.0 / static_cast<double>(n));
        if (share >= static_cast<double>(untilReach) || (reached == n && untilReach <= 1.0F)) {
          finished = true;
          break;
        }
      }
    }
    for (std::size_t a = 0; a < agents_; ++a) {
      for (std::size_t v = 0; v < n; ++v) totals[v] += visits[a][v];
      buffers[a].resize(progress);
    }
    return buffers;
  }

  void flush() { reset(0); }

 protected:
  virtual void draw(LiteralRandom& random, std::size_t count) { choices_ = numbers(random, count); }
  /// Where the agent goes from a list that is not empty.
  virtual std::uint64_t choose(std::size_t /*agent*/, const List& list, std::size_t number) {
    return entryOf(list, choices_[number]);
  }
  /// After the move to the vertex.
  virtual void remember(std::size_t /*agent*/, std::uint64_t /*vertex*/, std::size_t /*number*/) {}
  /// After each step.
  virtual void share() {}

  static std::vector<double> numbers(LiteralRandom& random, std::size_t count) {
    std::vector<double> drawn(count);
    for (double& number : drawn) number = random.next();
    return drawn;
  }
  static std::uint64_t entryOf(const List& list, double x) {
    const auto last = static_cast<double>(static_cast<std::int64_t>(list.size()) - 1);
    return list[static_cast<std::size_t>(std::round(last * x))];
  }

  std::vector<double> choices_;

 private:
  void reset(std::int64_t stamp) {
    const std::size_t n = out_.size();
    totals.assign(n, 0);
    visits.assign(agents_, Counts(n));
    orders.assign(agents_, Counts(n));
    stamps_.assign(agents_, stamp);
    marks_.clear();
    finished = false;
    walkCount = 0;
  }

  std::vector<List> out_;

 public:
  std::vector<std::uint64_t> positions;  // at least one for each agent
  Counts totals;
  std::vector<Counts> visits;
  std::vector<Counts> orders;
  std::uint64_t progress = 0;
  bool finished = false;
  std::uint64_t walkCount = 0;

 private:
  std::size_t agents_;
  Counts stamps_;
  std::vector<unsigned char> marks_;
};

}  // namespace veq::test
