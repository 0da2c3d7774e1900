#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "fuzz/support/check.hpp"
#include "fuzz/support/input.hpp"
#include "fuzz/support/network_image.hpp"
#include "veq/agents/agents_group.hpp"
#include "veq/network/network.hpp"

namespace veq::fuzz {

/// A network, and what it must hold by now.
struct Subject {
  Shared<VEQNetwork> network;
  NetworkImage model;
  bool editable = true;
};

/// A column that was made by hand, and may since have been installed somewhere.
struct LooseColumn {
  Shared<PropertyColumn> column;
  Shared<ColumnImage> model;
};

struct FuzzedGroup {
  Owned<VEQNetworkAgentsGroup> group;
  Shared<VEQNetwork> network;
  /// Moves of each agent since the history was last flushed.
  std::vector<std::uint64_t> moves;
};

template <class Kind>
struct KeptHandle {
  Shared<Kind> handle;
  std::weak_ptr<VEQNetwork> network;
  bool invalidated = false;
};

/// What a sequence of operations works on; a few of everything.
struct World {
  std::vector<Subject> subjects;
  std::vector<LooseColumn> columns;
  std::vector<FuzzedGroup> groups;
  std::vector<KeptHandle<VEQVertex>> vertices;
  std::vector<KeptHandle<VEQEdge>> edges;
};

/// Appends, or puts it in the place of one that is there.
template <class T>
void keep(std::vector<T>& things, T thing, Input& input) {
  constexpr std::size_t kMost = 4;
  if (things.size() < kMost) {
    things.push_back(std::move(thing));
  } else {
    things[input.below(kMost)] = std::move(thing);
  }
}

template <class T>
T* choose(std::vector<T>& things, Input& input) {
  return things.empty() ? nullptr : &things[input.below(things.size())];
}

/// Runs what must throw an Error exactly where it is expected to; whether it went through.
template <class Error, class F>
bool succeeds(bool mustThrow, F f) {
  try {
    f();
  } catch (const Error&) {
    VEQ_CHECK(mustThrow);
    return false;
  }
  VEQ_CHECK(!mustThrow);
  return true;
}

/// Runs what may throw for one of the documented causes; whether it went through.
template <class F>
bool mayThrow(F f) {
  try {
    f();
  } catch (const std::invalid_argument&) {
    return false;
  } catch (const std::out_of_range&) {
    return false;
  }
  return true;
}

/// Decoded from a few bytes.
/// @{
[[nodiscard]] float anyWeight(Input& input);
[[nodiscard]] PropertyValue anyValue(Input& input);
[[nodiscard]] std::string anyKey(Input& input);
/// Below n for the most part, and sometimes n or an index that cannot be.
[[nodiscard]] std::uint64_t anyIndex(Input& input, std::uint64_t n);
/// Numbers of any element type.
[[nodiscard]] VEQNumberArray anyIndices(Input& input, std::uint64_t n);
/// @}

/// Keeps a network of which nothing else is known, once it has been looked at.
void adopt(World& world, Shared<VEQNetwork> network, Input& input);

/// Each takes one step with what it decodes, and checks what it did.
/// @{
void makeNetwork(World& world, Input& input);
void deriveNetwork(World& world, Input& input);
void editNetwork(World& world, Input& input);
void editProperties(World& world, Input& input);
void useHandles(World& world, Input& input);
void questionNetwork(World& world, Input& input);
void makeGroup(World& world, Input& input);
void useGroup(World& world, Input& input);
/// @}

}  // namespace veq::fuzz
