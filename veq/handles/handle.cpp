#include "veq/handles/handle.hpp"

#include "veq/handles/edge.hpp"
#include "veq/handles/internal/handle_table.hpp"
#include "veq/handles/vertex.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq {

template <class Self>
Shared<Self> Handle<Self>::initAtNetwork_identification(const VEQNetwork& network,
                                                        std::uint64_t identification) {
  auto& handles = internal::CoreAccess::of(network).handles();
  auto owner = std::make_shared<internal::LoneHandle<Self>>(
      Shared<internal::LifeRecord>(handles.self, &handles.record), identification);
  return Shared<Self>(owner, &owner->handle);
}

template <class Self>
Shared<Self> Handle<Self>::copyWithZone(void*) const {
  auto* self = const_cast<Self*>(static_cast<const Self*>(this));
  return Shared<Self>(owner_->shared_from_this(), self);
}

template class Handle<VEQVertex>;
template class Handle<VEQEdge>;

}  // namespace veq
