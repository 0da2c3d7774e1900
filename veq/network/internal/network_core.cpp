#include "veq/network/internal/network_core.hpp"

#include "veq/base/internal/make_once.hpp"
#include "veq/network/internal/property_columns.hpp"

namespace veq::internal {
namespace {

bool hasFittingWeights(const NetworkDraft& draft) {
  return (!draft.verticesWeights || draft.verticesWeights->size() == draft.vertexCount) &&
         (!draft.edgesWeights || draft.edgesWeights->size() == draft.from.all().size());
}

std::optional<HeldWeights> held(std::optional<Weights>& weights) {
  if (!weights) return std::nullopt;
  return HeldWeights(std::move(*weights));
}

// Most networks have no columns, small ones above all.
void installAllOf(NetworkProperties& properties) {
  if (!properties.vertices.empty()) installAll(properties.vertices);
  if (!properties.edges.empty()) installAll(properties.edges);
}

}  // namespace

NetworkCore::NetworkCore(NetworkDraft&& draft)
    : store(draft.vertexCount, std::move(draft.from), std::move(draft.to), draft.directed,
            draft.narrowLimit, draft.pace),
      verticesWeights(held(draft.verticesWeights)),
      edgesWeights(held(draft.edgesWeights)),
      properties(std::make_shared<NetworkProperties>(std::move(draft.properties))),
      vertexCapacity(store.vertexCount()),
      edgesCapacity(store.edgeCount()) {
  if (!draft.columnsAreReady) installAllOf(*properties);
}

NetworkCore::NetworkCore(ForeignParts&& parts)
    : store(std::move(parts.topology)),
      verticesWeights(std::move(parts.verticesWeights)),
      edgesWeights(std::move(parts.edgesWeights)),
      properties(std::make_shared<NetworkProperties>(std::move(parts.properties))),
      vertexCapacity(store.vertexCount()),
      edgesCapacity(store.edgeCount()) {
  installAllOf(*properties);
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

Owned<VEQNetwork> CoreAccess::build(NetworkDraft draft) {
  if (!hasFittingWeights(draft)) return nullptr;
  return Owned<VEQNetwork>(new VEQNetwork(std::make_unique<NetworkCore>(std::move(draft))));
}

Shared<VEQNetwork> CoreAccess::buildShared(NetworkDraft draft) {
  if (!hasFittingWeights(draft)) return nullptr;
  return shared(std::make_unique<NetworkCore>(std::move(draft)));
}

Shared<VEQNetwork> CoreAccess::buildShared(ForeignParts parts) {
  return shared(std::make_unique<NetworkCore>(std::move(parts)));
}

Shared<VEQNetwork> CoreAccess::shared(std::unique_ptr<NetworkCore> core) {
  struct Network : VEQNetwork {
    explicit Network(std::unique_ptr<NetworkCore> own) : VEQNetwork(std::move(own)) {}
  };
  return std::make_shared<Network>(std::move(core));
}

}  // namespace veq::internal
