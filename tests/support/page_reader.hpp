#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace veq::test {

/// The block of data in a page.
inline std::string blockOf(const std::string& page) {
  const std::string before = "<script id=\"data\" type=\"application/octet-stream\">";
  const std::size_t begin = page.find(before) + before.size();
  const std::string text = page.substr(begin, page.find('<', begin) - begin);
  std::string bytes;
  std::uint32_t bits = 0;
  int count = 0;
  for (const char sign : text) {
    if (sign == '=') break;
    const std::string signs = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    bits = bits << 6 | static_cast<std::uint32_t>(signs.find(sign));
    if ((count += 6) < 8) continue;
    count -= 8;
    bytes += static_cast<char>(bits >> count & 255);
  }
  return bytes;
}

/// Reads what docs/formats/page.md describes, by that text alone.
class PageBytes {
 public:
  explicit PageBytes(std::string_view bytes) : bytes_(bytes) {}

  [[nodiscard]] bool atEnd() const { return bytes_.empty(); }
  std::string_view take(std::uint64_t count) {
    if (count > bytes_.size()) throw std::runtime_error("bytes are missing");
    const std::string_view taken = bytes_.substr(0, count);
    bytes_.remove_prefix(count);
    return taken;
  }
  std::uint64_t number(std::uint64_t bytes) {
    std::uint64_t value = 0;
    int shift = 0;
    for (const char byte : take(bytes)) {
      value |= std::uint64_t{static_cast<unsigned char>(byte)} << shift;
      shift += 8;
    }
    return value;
  }
  std::uint64_t varint() {
    std::uint64_t value = 0;
    for (int shift = 0;; shift += 7) {
      const std::uint64_t byte = number(1);
      value |= (byte & 127) << shift;
      if (byte < 128) return value;
    }
  }
  double f64() { return std::bit_cast<double>(number(8)); }
  float f32() { return std::bit_cast<float>(static_cast<std::uint32_t>(number(4))); }
  std::string text() { return std::string(take(varint())); }
  std::vector<std::uint64_t> varints(std::uint64_t count) {
    std::vector<std::uint64_t> values;
    for (std::uint64_t i = 0; i < count; ++i) values.push_back(varint());
    return values;
  }

 private:
  std::string_view bytes_;
};

struct PageSections {
  std::map<int, std::vector<std::string>> of;

  explicit PageSections(const std::string& block) {
    PageBytes bytes(block);
    if (bytes.take(5) != std::string_view("VEQP\x01", 5)) throw std::runtime_error("no block");
    int last = 0;
    while (!bytes.atEnd()) {
      const int tag = static_cast<int>(bytes.number(1));
      if (tag < last) throw std::runtime_error("sections out of order");
      last = tag;
      of[tag].emplace_back(bytes.text());
    }
  }
  [[nodiscard]] bool has(int tag) const { return of.count(tag) != 0; }
  [[nodiscard]] PageBytes at(int tag) const { return PageBytes(of.at(tag).at(0)); }
};

/// Walks again what a block holds, by its text alone, one step after the other.
class PageWalk {
 public:
  std::uint64_t agents = 0;
  std::uint64_t steps = 0;
  std::uint64_t end = 0;
  std::uint64_t asked = 0;
  double target = 0.0;
  std::vector<std::uint64_t> positions;
  std::vector<std::uint64_t> arrivals;
  std::uint64_t arrivalsSum = 0;
  std::uint64_t endsSum = 0;

  PageWalk(const PageSections& sections, std::uint64_t n, std::uint64_t m, bool directed)
      : arrivals(n), lists_(n) {
    readLists(sections, m, directed);
    readWalk(sections.at(6));
    if (recorded_) {
      PageBytes moves = sections.at(7);
      readMemories(sections.at(10));
      walkRecorded(moves);
    } else {
      walkAgain();
    }
  }

  /// What the agent remembers, from the oldest entry on.
  [[nodiscard]] std::vector<std::uint64_t> remembered(std::uint64_t agent) const {
    const Ring& ring = rings_[agent];
    std::vector<std::uint64_t> vertices;
    for (std::uint64_t i = 1; i <= ring.slots.size(); ++i) {
      const std::uint64_t entry = ring.slots[(ring.current + i) % ring.slots.size()];
      if (entry != 0) vertices.push_back(entry - 1);
    }
    return vertices;
  }

 private:
  struct Entry {
    std::uint64_t neighbour;
    double weight;
  };
  struct Ring {
    std::vector<std::uint64_t> slots;
    std::uint64_t current = 0;
    std::uint64_t last = 0;
    std::uint64_t transfer = 0;
    std::vector<std::uint64_t> listeners;

    [[nodiscard]] std::uint64_t next(std::uint64_t place) const {
      return (place + 1) % slots.size();
    }
  };
  struct Generator {
    std::deque<std::uint32_t> words;

    std::uint64_t draw() {
      words.push_back(words[28] + words[0]);
      words.pop_front();
      return words.back() >> 1;
    }
  };

  void readLists(const PageSections& sections, std::uint64_t m, bool directed) {
    PageBytes edges = sections.at(2);
    std::vector<std::uint64_t> sources;
    std::int64_t source = 0;
    for (std::uint64_t e = 0; e < m; ++e) {
      const auto zigzag = static_cast<std::int64_t>(edges.varint());
      source += zigzag % 2 == 0 ? zigzag / 2 : -(zigzag + 1) / 2;
      sources.push_back(static_cast<std::uint64_t>(source));
    }
    const std::vector<std::uint64_t> targets = edges.varints(m);
    std::vector<double> weights(m, 1.0);
    if (sections.has(8)) {
      PageBytes bytes = sections.at(8);
      for (double& weight : weights) weight = static_cast<double>(bytes.f32());
    }
    for (std::uint64_t e = 0; e < m; ++e) {
      lists_.at(sources[e]).push_back({targets[e], weights[e]});
      if (!directed) lists_.at(targets[e]).push_back({sources[e], weights[e]});
    }
  }

  static Generator generator(PageBytes& bytes) {
    Generator made;
    for (int i = 0; i < 31; ++i) {
      made.words.push_back(static_cast<std::uint32_t>(bytes.number(4)));
    }
    return made;
  }

  void readWalk(PageBytes bytes) {
    choice_ = bytes.number(1);
    recorded_ = bytes.number(1) == 1;
    end = bytes.number(1);
    restarts_ = bytes.number(1);
    threshold_ = bytes.number(4);
    choosing_ = generator(bytes);
    if (restarts_ == 1) restarting_ = generator(bytes);
    agents = bytes.varint();
    steps = bytes.varint();
    asked = bytes.varint();
    target = bytes.f64();
    positions = bytes.varints(agents);
    if (restarts_ != 0) homes_ = bytes.varints(agents);
    arrivalsSum = bytes.number(4);
    endsSum = bytes.number(4);
    if (!bytes.atEnd()) throw std::runtime_error("bytes are left over");
  }

  void arrive(std::uint64_t agent, std::uint64_t vertex) {
    positions[agent] = vertex;
    ++arrivals.at(vertex);
  }

  void walkAgain() {
    for (std::uint64_t s = 0; s < steps; ++s) {
      std::vector<std::uint64_t> choices;
      std::vector<std::uint64_t> restarts;
      for (std::uint64_t a = 0; a < agents; ++a) choices.push_back(choosing_.draw());
      for (std::uint64_t a = 0; a < agents && restarts_ != 0; ++a) {
        restarts.push_back((restarts_ == 1 ? restarting_ : choosing_).draw());
      }
      for (std::uint64_t a = 0; a < agents; ++a) {
        if (restarts_ != 0 && restarts[a] < threshold_) {
          arrive(a, homes_[a]);
        } else if (const auto to = chosen(lists_[positions[a]], choices[a])) {
          arrive(a, *to);
        }
      }
    }
  }

  [[nodiscard]] std::optional<std::uint64_t> chosen(const std::vector<Entry>& list,
                                                    std::uint64_t draw) const {
    const std::uint64_t k = list.size();
    if (k == 0) return std::nullopt;
    if (choice_ == 0) return list[((k - 1) * draw + (1U << 30)) >> 31].neighbour;
    if (choice_ == 1) return list[k * draw >> 31].neighbour;
    double total = 0.0;
    for (const Entry& entry : list) total += entry.weight;
    double sum = 0.0;
    for (const Entry& entry : list) {
      sum += entry.weight;
      if (sum > total * (static_cast<double>(draw) / 2147483648.0)) return entry.neighbour;
    }
    return std::nullopt;
  }

  void readMemories(PageBytes bytes) {
    const std::vector<std::uint64_t> sizes = bytes.varints(agents);
    rings_.resize(agents);
    for (std::uint64_t a = 0; a < agents; ++a) rings_[a].slots.assign(sizes[a], 0);
    haveListeners_ = bytes.number(1) == 1;
    for (Ring& ring : rings_) {
      if (haveListeners_) ring.listeners = bytes.varints(bytes.varint());
    }
    for (Ring& ring : rings_) {
      if (bytes.number(1) == 0) continue;
      ring.current = bytes.varint();
      ring.last = bytes.varint();
      ring.transfer = bytes.varint();
      ring.slots = bytes.varints(ring.slots.size());
    }
    if (!bytes.atEnd()) throw std::runtime_error("bytes are left over");
  }

  void walkRecorded(PageBytes bytes) {
    // All moves first, since the mistakes stand behind them.
    std::vector<std::optional<std::uint64_t>> moves;
    std::vector<std::uint64_t> at = positions;
    for (std::uint64_t i = 0; i < agents * steps; ++i) {
      const std::uint64_t move = bytes.varint();
      std::optional<std::uint64_t> to;
      if (move == 1) to = bytes.varint();
      if (move > 1) to = lists_[at[i % agents]].at(move - 2).neighbour;
      if (to) at[i % agents] = *to;
      moves.push_back(to);
    }
    std::map<std::uint64_t, std::uint64_t> mistakes;
    std::uint64_t number = 0;
    for (std::uint64_t left = bytes.varint(); left > 0; --left) {
      number += bytes.varint();
      mistakes[number] = bytes.varint();
    }
    if (!bytes.atEnd()) throw std::runtime_error("bytes are left over");
    for (std::uint64_t s = 0; s < steps; ++s) {
      for (std::uint64_t a = 0; a < agents; ++a) {
        const std::uint64_t i = s * agents + a;
        if (!moves[i]) continue;
        arrive(a, *moves[i]);
        remember(rings_[a], mistakes.count(i) ? mistakes[i] : *moves[i]);
      }
      if (!haveListeners_) continue;
      for (Ring& ring : rings_) tell(ring);
    }
  }

  void remember(Ring& ring, std::uint64_t vertex) const {
    ring.current = ring.next(ring.current);
    if (haveListeners_) {
      ring.last = ring.current;
      if (ring.current == ring.transfer) ring.transfer = ring.next(ring.transfer);
    }
    ring.slots[ring.current] = vertex + 1;
  }

  void tell(Ring& ring) {
    while (true) {
      const std::uint64_t entry = ring.slots[ring.transfer];
      bool given = false;
      for (const std::uint64_t listener : ring.listeners) {
        if (entry != 0) given |= receive(rings_[listener], entry);
      }
      if (ring.transfer == ring.last) return;
      ring.transfer = ring.next(ring.transfer);
      if (given) return;
    }
  }

  static bool receive(Ring& ring, std::uint64_t entry) {
    if (std::find(ring.slots.begin(), ring.slots.end(), entry) != ring.slots.end()) return false;
    ring.current = ring.next(ring.current);
    if (ring.current == ring.transfer) ring.transfer = ring.next(ring.transfer);
    if (ring.current == ring.last) ring.last = ring.next(ring.last);
    ring.slots[ring.current] = entry;
    return true;
  }

  std::vector<std::vector<Entry>> lists_;
  std::uint64_t choice_ = 0;
  bool recorded_ = false;
  std::uint64_t restarts_ = 0;
  std::uint64_t threshold_ = 0;
  Generator choosing_;
  Generator restarting_;
  std::vector<std::uint64_t> homes_;
  std::vector<Ring> rings_;
  bool haveListeners_ = false;
};

}  // namespace veq::test
