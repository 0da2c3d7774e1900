#include "veq/network/internal/network_core.hpp"

#include <algorithm>
#include <array>

#include "veq/base/internal/make_once.hpp"

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

NetworkCore::NetworkCore(NetworkDraft&& draft)
    : store(draft.vertexCount, {draft.from.all(), draft.to.all()}, draft.directed,
            draft.narrowLimit,
            [&draft] {
              draft.from = IndexList();
              draft.to = IndexList();
            }),
      verticesWeights(std::move(draft.verticesWeights)),
      edgesWeights(std::move(draft.edgesWeights)),
      vertexCapacity(store.vertexCount()),
      edgesCapacity(store.edgeCount()) {
  installColumns(properties->edges, draft.edgesProperties);
  installColumns(properties->vertices, draft.verticesProperties);
}

NetworkCore::~NetworkCore() {
  NetworkHandles* const made = handles_.load(std::memory_order_acquire);
  if (!made) return;
  made->record.alive.store(false, std::memory_order_release);
  made->self.reset();
}

NetworkHandles& NetworkCore::handles() const {
  return *makeOnce(
      handles_,
      [this] {
        const auto made = std::make_shared<NetworkHandles>(network);
        made->self = made;
        return made.get();
      },
      [](NetworkHandles* unused) { unused->self.reset(); });
}

std::unique_ptr<NetworkCore> CoreAccess::buildCore(NetworkDraft draft) {
  const std::uint64_t edges = draft.from.all().size();
  if (draft.edgesWeights && draft.edgesWeights->size() != edges) return nullptr;
  if (draft.verticesWeights && draft.verticesWeights->size() != draft.vertexCount) return nullptr;
  return std::make_unique<NetworkCore>(std::move(draft));
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
  core_->network = this;
}

VEQNetwork::~VEQNetwork() = default;

}  // namespace veq
