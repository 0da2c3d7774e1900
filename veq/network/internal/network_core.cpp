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

Owned<VEQNetwork> CoreAccess::build(NetworkDraft draft) {
  const EdgeEnds ends{draft.from.all(), draft.to.all()};
  if (draft.edgesWeights && draft.edgesWeights->size() != ends.count()) return nullptr;
  if (draft.verticesWeights && draft.verticesWeights->size() != draft.vertexCount) return nullptr;

  auto core = std::make_unique<NetworkCore>();
  core->store = AdjacencyStore(draft.vertexCount, ends, draft.directed, draft.narrowLimit);
  core->verticesWeights = std::move(draft.verticesWeights);
  core->edgesWeights = std::move(draft.edgesWeights);
  core->vertexCapacity = draft.vertexCount;
  core->edgesCapacity = ends.count();
  installColumns(*core->edgesProperties, draft.edgesProperties);
  installColumns(*core->verticesProperties, draft.verticesProperties);
  return Owned<VEQNetwork>(new VEQNetwork(std::move(core)));
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
  core_->life = std::make_shared<internal::LifeRecord>(this);
  core_->vertices = std::make_shared<internal::HandleTable<VEQVertex>>(core_->life);
  core_->edges = std::make_shared<internal::HandleTable<VEQEdge>>(core_->life);
}

VEQNetwork::~VEQNetwork() { core_->life->alive.store(false, std::memory_order_release); }

}  // namespace veq
