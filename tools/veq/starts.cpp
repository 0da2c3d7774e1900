#include "starts.hpp"

#include <algorithm>
#include <charconv>
#include <new>
#include <system_error>

#include "failure.hpp"

namespace veq::tool {
namespace {

std::uint64_t vertexCalled(const VEQNetwork& network, const std::string& file,
                           std::string_view text) {
  if (const Shared<VEQVertex> vertex = network.vertexWithName(text)) {
    return vertex->identification();
  }
  std::uint64_t index = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, index);
  if (error != std::errc() || rest != end || index >= network.countVertices()) {
    throw Failure(file, "has no vertex \"" + std::string(text) + "\"");
  }
  return index;
}

}  // namespace

std::vector<std::uint64_t> startVertices(const VEQNetwork& network, const std::string& file,
                                         std::string_view list, std::uint64_t agents) {
  if (network.countVertices() == 0) throw Failure(file, "has no vertices to walk on");
  std::vector<std::uint64_t> listed;
  for (bool more = !list.empty(); more;) {
    const std::size_t comma = list.find(',');
    listed.push_back(vertexCalled(network, file, list.substr(0, comma)));
    more = comma != std::string_view::npos;
    if (more) list.remove_prefix(comma + 1);
  }
  std::vector<std::uint64_t> starts;
  if (agents > starts.max_size()) throw std::bad_alloc();
  starts.resize(agents);
  for (std::uint64_t i = 0; i < agents; ++i) {
    starts[i] = listed.empty() ? i % network.countVertices() : listed[i % listed.size()];
  }
  return starts;
}

}  // namespace veq::tool
