#include "veq/network/internal/network_core.hpp"

#include <algorithm>
#include <array>

namespace veq {
namespace internal {
namespace {

// These name the weights and the ends of edges, which are no columns.
constexpr std::array<std::string_view, 4> kReservedKeys{"Edge Weight", "Vertex Weight", "Edge From",
                                                        "Edge To"};

void installColumns(PropertyTable& table, const PropertyTable& columns) {
  for (const auto& [key, column] : columns) {
    if (column) installColumn(table, key, column);
  }
}

}  // namespace

std::unique_ptr<NetworkCore> CoreAccess::buildCore(NetworkDraft draft) {
  const EdgeEnds ends{draft.from.all(), draft.to.all()};
  if (draft.edgesWeights && draft.edgesWeights->size() != ends.count()) return nullptr;
  if (draft.verticesWeights && draft.verticesWeights->size() != draft.vertexCount) return nullptr;

  auto core = std::make_unique<NetworkCore>();
  core->store = AdjacencyStore(draft.vertexCount, ends, draft.directed, draft.narrowLimit);
  core->verticesWeights = std::move(draft.verticesWeights);
  core->edgesWeights = std::move(draft.edgesWeights);
  core->vertexCapacity = draft.vertexCount;
  core->edgesCapacity = ends.count();
  installColumns(core->properties->edges, draft.edgesProperties);
  installColumns(core->properties->vertices, draft.verticesProperties);
  return core;
}

Owned<VEQNetwork> CoreAccess::build(NetworkDraft draft) {
  std::unique_ptr<NetworkCore> core = buildCore(std::move(draft));
  return core ? Owned<VEQNetwork>(new VEQNetwork(std::move(core))) : nullptr;
}

Shared<VEQNetwork> CoreAccess::shared(std::unique_ptr<NetworkCore> core) {
  struct Network : VEQNetwork {
    explicit Network(std::unique_ptr<NetworkCore> parts) : VEQNetwork(std::move(parts)) {}
  };
  return std::make_shared<Network>(std::move(core));
}

bool isReservedKey(std::string_view key) {
  return std::find(kReservedKeys.begin(), kReservedKeys.end(), key) != kReservedKeys.end();
}

void installColumn(PropertyTable& table, std::string_view key, Shared<PropertyColumn> column) {
  if (isReservedKey(key)) return;
  if (!column) {
    table.remove(key);
    return;
  }
  if (!column->isEditable()) column = column->editableCopy();
  table.set(key, std::move(column));
}

PropertyValue valueOrNull(const PropertyColumn& column, std::uint64_t index) {
  return index < column.count() ? column.objectAtIndex(index) : PropertyValue();
}

}  // namespace internal

VEQNetwork::VEQNetwork(std::unique_ptr<internal::NetworkCore> core) : core_(std::move(core)) {
  core_->handles = std::make_shared<internal::NetworkHandles>(this);
}

VEQNetwork::~VEQNetwork() { core_->handles->record.alive.store(false, std::memory_order_release); }

}  // namespace veq
