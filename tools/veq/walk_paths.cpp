#include "walk_paths.hpp"

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

}  // namespace

void writePaths(const std::string& file, const VEQNetwork& network,
                const std::vector<std::uint64_t>& starts, const VEQVertexPaths& paths) {
  const std::vector<std::string> ends = lineEnds(network);
  constexpr std::size_t kBlock = 1 << 16;
  writeTo(file, [&](const ByteSink& sink) {
    std::string lines = "agent,step,index,name\n";
    for (std::uint64_t agent = 0; agent < paths.count(); ++agent) {
      const std::string begin = std::to_string(agent) + ',';
      const VEQVertexArray path = paths[agent];
      std::uint64_t place = starts[agent];
      lines += begin + '0' + ends[place];
      for (std::uint64_t step = 0; step < path.count(); ++step) {
        // A path shows vertex 0 where the agent could not move. This file says where it stood.
        if (network.countEdgesOfVertexAtIndex(place) > 0) place = path.identificationAtIndex(step);
        lines.append(begin).append(std::to_string(step + 1)).append(ends[place]);
        if (lines.size() < kBlock) continue;
        if (!sink(lines)) return false;
        lines.clear();
      }
    }
    return sink(lines);
  });
}

}  // namespace veq::tool
