#include "walk_paths.hpp"

#include <cstdint>
#include <utility>

#include "data.hpp"
#include "streams.hpp"
#include "vertex_names.hpp"

namespace veq::tool {
namespace {

/// How the line of each vertex ends.
std::vector<std::string> lineEnds(const VEQNetwork& network) {
  std::vector<std::string> ends(network.countVertices());
  for (std::uint64_t i = 0; i < ends.size(); ++i) {
    ends[i] = ',' + std::to_string(i) + ',' + csvField(vertexName(network, i)) + '\n';
  }
  return ends;
}

/// Lines that go to the sink in large pieces.
class Lines {
 public:
  Lines(const ByteSink& sink, std::string first) : sink_(sink), waiting_(std::move(first)) {}

  /// Room for the next line; null once the sink takes no more.
  [[nodiscard]] std::string* next() {
    constexpr std::size_t kBlock = 1 << 16;
    if (waiting_.size() >= kBlock && !flush()) return nullptr;
    return &waiting_;
  }

  [[nodiscard]] bool flush() {
    const bool taken = sink_(waiting_);
    waiting_.clear();
    return taken;
  }

 private:
  const ByteSink& sink_;
  std::string waiting_;
};

}  // namespace

void writePaths(const std::string& file, const VEQNetwork& network, const WalkPaths& paths) {
  const std::vector<std::string> ends = lineEnds(network);
  writeTo(file, [&](const ByteSink& sink) {
    Lines lines(sink, "agent,step,index,name\n");
    for (std::uint64_t agent = 0; agent < paths.countAgents(); ++agent) {
      const std::string begin = std::to_string(agent) + ',';
      const std::vector<std::uint64_t> path = paths.of(agent, true);
      for (std::uint64_t step = 0; step < path.size(); ++step) {
        std::string* const line = lines.next();
        if (!line) return false;
        line->append(begin).append(std::to_string(step)).append(ends[path[step]]);
      }
    }
    return lines.flush();
  });
}

void writeCoverage(const std::string& file, const std::vector<Coverage>& coverage) {
  writeTo(file, [&](const ByteSink& sink) {
    Lines lines(sink, "step,vertices\n");
    for (const Coverage& point : coverage) {
      std::string* const line = lines.next();
      if (!line) return false;
      line->append(std::to_string(point.step) + ',' + std::to_string(point.vertices) + '\n');
    }
    return lines.flush();
  });
}

}  // namespace veq::tool
