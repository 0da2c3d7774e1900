#include "walk_paths.hpp"

#include <filesystem>
#include <fstream>
#include <system_error>

#include "failure.hpp"
#include "network_files.hpp"

namespace veq::tool {
namespace {

std::string csvField(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char character : text) {
    if (character == '"') quoted += '"';
    quoted += character;
  }
  return quoted + '"';
}

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
  std::error_code ignored;
  const bool isNew = !std::filesystem::exists(file, ignored);
  std::ofstream stream(file, std::ios::binary);
  stream << "agent,step,index,name\n";
  for (std::uint64_t agent = 0; agent < paths.count() && stream; ++agent) {
    const std::string agentText = std::to_string(agent);
    const VEQVertexArray path = paths[agent];
    std::uint64_t place = starts[agent];
    stream << agentText << ",0" << ends[place];
    for (std::uint64_t step = 0; step < path.count(); ++step) {
      // A path shows vertex 0 where the agent could not move. This file says where it stood.
      if (network.countEdgesOfVertexAtIndex(place) > 0) place = path.identificationAtIndex(step);
      stream << agentText << ',' << step + 1 << ends[place];
    }
  }
  stream.close();
  if (!stream) {
    if (isNew) std::filesystem::remove(file, ignored);
    throw Failure(file, "cannot be written");
  }
}

}  // namespace veq::tool
