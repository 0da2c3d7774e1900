// What the machine allows without any library: hand-written floors, the C library's random numbers
// and memcpy. Where a floor follows the same rules as the library, their checksums agree.
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "base_rows.hpp"
#include "workload.hpp"

namespace bench {
namespace {

bool measureBuild(const Arguments& arguments, Measurement& measurement) {
  const Edges edges = edgesOf(arguments);
  measurement.timeAndWeigh(
      "bytes_per_edge", edges.count(),
      [&] {
        return plainNetworkOf(edges.vertices, edges.from, edges.to, arguments.count("dir") != 0);
      },
      [](const auto& network) { return network->from.size(); });
  return true;
}

/// All agents of a block before the next stage, so that what they fetch is on its way meanwhile;
/// positions and visits only. The entry is round((degree - 1) x draw), in integers.
class PlainWalk {
 public:
  PlainWalk(const Rows& rows, std::uint64_t vertices, std::uint64_t agents)
      : neighbours_(rows.neighbours),
        records_(vertices),
        positions_(agents),
        entries_(agents),
        block_(agents <= 256 ? 256 : 64) {
    for (std::uint64_t v = 0; v < vertices; ++v) {
      records_[v] = {static_cast<std::uint32_t>(rows.begin[v]),
                     static_cast<std::uint32_t>(rows.begin[v + 1] - rows.begin[v]), 0};
    }
  }

  void walk(const std::vector<std::uint64_t>& starts, std::uint64_t steps) {
    RandomWords random(7);
    std::copy(starts.begin(), starts.end(), positions_.begin());
    const std::uint64_t agents = positions_.size();
    for (std::uint64_t step = 0; step < steps; ++step) {
      for (std::uint64_t begin = 0; begin < agents; begin += block_) {
        const std::uint64_t end = std::min(agents, begin + block_);
        choose(begin, end, step != 0, random);
        move(begin, end);
      }
    }
    for (const std::uint32_t position : positions_) ++records_[position].visits;
  }

  [[nodiscard]] const std::vector<std::uint32_t>& positions() const { return positions_; }

 private:
  static constexpr std::uint32_t kNowhere = ~std::uint32_t{0};

  struct Record {
    std::uint32_t begin;
    std::uint32_t degree;
    std::uint64_t visits;
  };

  void choose(std::uint64_t begin, std::uint64_t end, bool arrived, RandomWords& random) {
    for (std::uint64_t agent = begin; agent < end; ++agent) {
      Record& record = records_[positions_[agent]];
      const std::uint64_t degree = record.degree;
      const std::uint32_t word = random.next();
      record.visits += arrived;
      const std::uint64_t entry = ((degree - 1) * (word >> 1) + (1U << 30)) >> 31;
      entries_[agent] = degree > 0 ? static_cast<std::uint32_t>(record.begin + entry) : kNowhere;
      if (degree > 0) __builtin_prefetch(&neighbours_[entries_[agent]]);
      if (positions_.size() > block_) {
        const std::uint64_t later = end + (agent - begin);
        __builtin_prefetch(&records_[positions_[later < positions_.size() ? later : 0]], 1);
      }
    }
  }

  void move(std::uint64_t begin, std::uint64_t end) {
    for (std::uint64_t agent = begin; agent < end; ++agent) {
      if (entries_[agent] == kNowhere) continue;
      positions_[agent] = neighbours_[entries_[agent]];
      if (positions_.size() <= block_) __builtin_prefetch(&records_[positions_[agent]], 1);
    }
  }

  const std::vector<std::uint32_t>& neighbours_;
  std::vector<Record> records_;
  std::vector<std::uint32_t> positions_;
  std::vector<std::uint32_t> entries_;
  std::uint64_t block_;
};

bool measureWalk(const Arguments& arguments, Measurement& measurement) {
  const std::uint64_t agents = arguments.count("A", 1);
  const std::uint64_t steps = arguments.count("S", 1000);
  const Edges edges = edgesOf(arguments);
  const auto starts = startsOf(edges, agents);
  const Rows rows = partitionedRows(edges.vertices, edges.from, edges.to, true);
  PlainWalk walk(rows, edges.vertices, agents);
  measurement.time(
      [&] {
        walk.walk(starts, steps);
        return Done();
      },
      [&](Done) { return checksumOfPositions(walk.positions()); });
  measurement.addNanoseconds("ns_per_step", static_cast<double>(agents * steps));
  return true;
}

/// Ends in a pool, once for each edge and initial vertex; a new vertex can only repeat its own
/// latest targets.
void drawPreferentialEnds(std::uint64_t n, std::uint64_t m, std::vector<std::uint64_t>& from,
                          std::vector<std::uint64_t>& to) {
  RandomWords random(7);
  const std::unique_ptr<std::uint32_t[]> pool(new std::uint32_t[m + 2 * from.size()]);
  std::uint64_t length = 0;
  std::uint64_t count = 0;
  while (length < m) {
    pool[length] = static_cast<std::uint32_t>(length);
    ++length;
  }
  for (std::uint64_t v = m; v < n; ++v) {
    const std::uint64_t first = count;
    while (count < first + m) {
      const double x = static_cast<double>(length - 1) *
                       (static_cast<double>(random.next() >> 1) / 2147483647.0);
      const std::uint32_t target = pool[static_cast<std::uint64_t>(x + 0.5)];
      bool repeated = false;
      for (std::uint64_t e = first; e < count; ++e) repeated |= to[e] == target;
      if (repeated) continue;
      from[count] = v;
      to[count++] = target;
      pool[length++] = target;
    }
    for (std::uint64_t i = 0; i < m; ++i) pool[length++] = static_cast<std::uint32_t>(v);
  }
}

bool measurePreferentialAttachment(const Arguments& arguments, Measurement& measurement) {
  const std::uint64_t n = arguments.count("n", 100'000);
  const std::uint64_t m = arguments.count("m", 4);
  measurement.time(
      [&] {
        std::vector<std::uint64_t> from((n - m) * m);
        std::vector<std::uint64_t> to((n - m) * m);
        drawPreferentialEnds(n, m, from, to);
        return plainNetworkOf(n, from, to, false);
      },
      [](const auto& network) {
        const auto& to = network->to;
        return std::uint64_t{to.back()} * 1'000'003 + to[to.size() / 2];
      });
  return true;
}

/// 0 to 1 - 2^-31.
double libcRandom() { return static_cast<double>(random()) * 0x1p-31; }

bool measureUniformNetwork(const Arguments& arguments, Measurement& measurement) {
  const std::uint64_t n = arguments.count("n", 10'000);
  const double probability = arguments.real("k", 10) / static_cast<double>(n);
  measurement.time(
      [&] {
        srandom(7);
        std::vector<std::uint64_t> from;
        std::vector<std::uint64_t> to;
        std::uint64_t highest = 0;
        for (std::uint64_t i = 0; i < n; ++i) {
          for (std::uint64_t j = i + 1; j < n; ++j) {
            if (probability <= libcRandom()) continue;
            from.push_back(i);
            to.push_back(j);
            highest = std::max(highest, j);
          }
        }
        return plainNetworkOf(highest + 1, from, to, false);
      },
      [](const auto& network) { return network->from.size(); });
  return true;
}

/// Into memory that is there already.
bool measureDoubles(const Arguments& arguments, Measurement& measurement) {
  std::vector<double> numbers(arguments.count("n", 10'000));
  const std::uint64_t times = arguments.count("times", 1);
  srandom(7);
  measurement.time(
      [&] {
        for (std::uint64_t i = 0; i < times; ++i) {
          for (double& number : numbers) number = libcRandom();
        }
        return Done();
      },
      [&](Done) { return numbers.size(); });
  measurement.addNanoseconds("ns_per_number", static_cast<double>(numbers.size() * times));
  return true;
}

/// fresh=1 copies into new memory.
bool measureCopy(const Arguments& arguments, Measurement& measurement) {
  const std::vector<std::uint64_t> numbers(arguments.count("n", 10'000'000), 5);
  const std::size_t bytes = numbers.size() * sizeof(std::uint64_t);
  std::unique_ptr<char[]> copy(new char[bytes]);
  measurement.time(
      [&] {
        if (arguments.count("fresh") != 0) copy.reset(new char[bytes]);
        std::memcpy(copy.get(), numbers.data(), bytes);
        return Done();
      },
      [&](Done) { return copy[bytes - 8]; });
  measurement.addMegabytesPerSecond(static_cast<double>(bytes));
  return true;
}

/// Writes a workload's file: format=net is Pajek with names and weights, format=edges lines
/// "a b w".
bool writeFile(const Arguments& arguments, Measurement& measurement) {
  const Edges edges = edgesOf(arguments, true);
  const bool pajek = arguments.text("format") == "net";
  measurement.time(
      [&] {
        std::FILE* file = std::fopen(arguments.text("out").c_str(), "wb");
        if (!file) return false;
        const std::uint64_t base = pajek ? 1 : 0;
        if (pajek) {
          std::fprintf(file, "*Vertices %lu\r\n", edges.vertices);
          for (std::uint64_t v = 0; v < edges.vertices; ++v) {
            std::fprintf(file, "%lu \"%s\"\r\n", v + 1, nameOf(v).c_str());
          }
          std::fprintf(file, "*Edges\r\n");
        }
        for (std::uint64_t e = 0; e < edges.count(); ++e) {
          std::fprintf(file, pajek ? "%lu %lu %f\r\n" : "%lu %lu %f\n", edges.from[e] + base,
                       edges.to[e] + base, static_cast<double>(edges.weights[e]));
        }
        return std::fclose(file) == 0;
      },
      [](bool written) { return written; });
  return true;
}

}  // namespace
}  // namespace bench

int main(int count, char** values) {
  using namespace bench;
  return run(count, values,
             {{"build", measureBuild},
              {"walk", measureWalk},
              {"ba", measurePreferentialAttachment},
              {"gnp", measureUniformNetwork},
              {"doubles", measureDoubles},
              {"copy", measureCopy},
              {"write_file", writeFile}});
}
