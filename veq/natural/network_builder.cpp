#include "veq/natural/network_builder.hpp"

#include <algorithm>
#include <memory>
#include <new>
#include <stdexcept>
#include <utility>

#include "veq/natural/internal/complaints.hpp"
#include "veq/natural/internal/making.hpp"

namespace veq {
namespace {

// A negative end has become a number from here on.
constexpr std::uint64_t kNoIndex = std::uint64_t{1} << 63;

void requireEnd(std::uint64_t end, const char* which, std::uint64_t edge) {
  if (end < kNoIndex) return;
  throw std::out_of_range("edge " + std::to_string(edge) + ": " + which + " " +
                          std::to_string(static_cast<std::int64_t>(end)));
}

// Room for one more, so that appending it cannot fail.
template <class Vector>
void reserveOneMore(Vector& values) {
  if (values.size() == values.capacity()) values.reserve(2 * values.size() + 1);
}

// Vertices without a name have an unset value.
Shared<GenericArray> nameColumn(const std::map<std::string, std::uint64_t, std::less<>>& named,
                                std::uint64_t vertices, internal::Pace& pace) {
  constexpr std::uint64_t kTile = std::uint64_t{1} << 16;
  std::vector<PropertyValue> names;
  names.reserve(vertices);
  while (names.size() < vertices) {
    names.resize(std::min<std::uint64_t>(vertices, names.size() + kTile));
    pace.reach(0);
  }
  std::uint64_t taken = 0;
  for (const auto& [name, vertex] : named) {
    names[vertex] = name;
    if (++taken % kTile == 0) pace.reach(0);
  }
  return std::make_shared<GenericArray>(std::move(names));
}

}  // namespace

std::uint64_t NetworkBuilder::addVertices(std::uint64_t count) {
  if (count >= kNoIndex || vertices_ + count >= kNoIndex) throw std::bad_alloc();
  return std::exchange(vertices_, vertices_ + count);
}

std::uint64_t NetworkBuilder::vertexNamed(std::string_view name) {
  const auto at = named_.find(name);
  if (at != named_.end()) return at->second;
  const std::uint64_t vertex = addVertices(1);
  try {
    named_.emplace(name, vertex);
  } catch (...) {
    vertices_ = vertex;
    throw;
  }
  return vertex;
}

std::uint64_t NetworkBuilder::addEdge(std::uint64_t source, std::uint64_t target) {
  const std::uint64_t edge = sources_.size();
  requireEnd(source, "source", edge);
  requireEnd(target, "target", edge);
  reserveOneMore(sources_);
  reserveOneMore(targets_);
  if (!weights_.empty()) weights_.push_back(1.0);
  sources_.push_back(source);
  targets_.push_back(target);
  vertices_ = std::max(vertices_, std::max(source, target) + 1);
  return edge;
}

std::uint64_t NetworkBuilder::addEdge(std::uint64_t source, std::uint64_t target, double weight) {
  const std::uint64_t edge = sources_.size();
  requireEnd(source, "source", edge);
  requireEnd(target, "target", edge);
  if (weights_.capacity() <= edge) weights_.reserve(2 * edge + 1);
  reserveOneMore(sources_);
  reserveOneMore(targets_);
  // Nothing fails from here on.
  if (weights_.empty()) weights_.resize(edge, 1.0);
  weights_.push_back(weight);
  sources_.push_back(source);
  targets_.push_back(target);
  vertices_ = std::max(vertices_, std::max(source, target) + 1);
  return edge;
}

std::uint64_t NetworkBuilder::addEdge(std::string_view source, std::string_view target) {
  return addNamed(source, target, nullptr);
}

std::uint64_t NetworkBuilder::addEdge(std::string_view source, std::string_view target,
                                      double weight) {
  return addNamed(source, target, &weight);
}

std::uint64_t NetworkBuilder::addNamed(std::string_view source, std::string_view target,
                                       const double* weight) {
  const std::uint64_t before = vertices_;
  try {
    const std::uint64_t from = vertexNamed(source);
    const std::uint64_t to = vertexNamed(target);
    return weight ? addEdge(from, to, *weight) : addEdge(from, to);
  } catch (...) {
    std::erase_if(named_, [before](const auto& named) { return named.second >= before; });
    vertices_ = before;
    throw;
  }
}

Result<Network> NetworkBuilder::build(BuildOptions options) const {
  if (!weights_.empty()) options.edgeWeights = NumberSpan(weights_);
  if (options.vertices && *options.vertices < vertices_) {
    return internal::argumentError(internal::counted(vertices_, internal::Item::kVertex) +
                                   " were added, not " + std::to_string(*options.vertices));
  }
  if (!options.vertices) options.vertices = vertices_;
  return internal::untilStopped([&] {
    if (!named_.empty()) {
      internal::Pace pace(options.progress, internal::kBuildingPasses * countEdges());
      options.vertexColumns.set("Name", nameColumn(named_, *options.vertices, pace));
    }
    return Network::build(sources_, targets_, options);
  });
}

}  // namespace veq
