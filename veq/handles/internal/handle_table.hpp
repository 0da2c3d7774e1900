#pragma once

#include <atomic>
#include <bit>
#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>

#include "veq/base/internal/atomic_ref.hpp"
#include "veq/base/internal/make_once.hpp"
#include "veq/base/internal/memory.hpp"
#include "veq/base/ownership.hpp"
#include "veq/handles/internal/life_record.hpp"

namespace veq::internal {

/// All handles of one kind of one network, behaving as if each had been made with the network: the
/// same index always gives the same object, at an address that never changes. Segments of handles
/// are made when one of theirs is first asked for, without a lock and safely for concurrent
/// callers, so that a network whose handles nobody wants pays nothing for them, and growth is no
/// event.
///
/// Segment s hangs in group bit_width(s + 1) - 1 of a directory; group g has room for 2^g segments.
template <class Kind>
class HandleTable {
 public:
  /// The table is a part of the owner.
  explicit HandleTable(HandleOwner& owner) : owner_(owner) {}
  HandleTable(const HandleTable&) = delete;
  HandleTable& operator=(const HandleTable&) = delete;
  ~HandleTable() {
    Directory* directory = directory_.load(std::memory_order_acquire);
    if (!directory) return;
    for (unsigned g = 0; g < kGroups; ++g) {
      Kind** group = directory->groups[g].load(std::memory_order_acquire);
      if (!group) continue;
      for (std::uint64_t i = 0; i < std::uint64_t{1} << g; ++i) ::operator delete(group[i]);
      release(group);
    }
    delete directory;
  }

  /// The handle of an index that the caller has checked. std::bad_alloc where it cannot be made.
  [[nodiscard]] Kind& at(std::uint64_t index) {
    const std::uint64_t place = index / kSegmentSize + 1;
    const unsigned g = static_cast<unsigned>(std::bit_width(place)) - 1;
    Kind** group = makeOnce(
        makeOnce(
            directory_, [] { return new Directory; }, [](Directory* d) { delete d; })
            ->groups[g],
        [g] { return static_cast<Kind**>(allocateZeroed(std::uint64_t{1} << g, sizeof(Kind*))); },
        [](Kind** unused) { release(unused); });
    const std::uint64_t first = (place - 1) * kSegmentSize;
    Kind* segment = makeOnce(
        AtomicRef<Kind*>(group[place - (std::uint64_t{1} << g)]),
        [this, first] { return makeSegment(first); },
        [](Kind* unused) { ::operator delete(unused); });
    return segment[index - first];
  }

  /// The handle of an index if it has been made, null otherwise. For questions about what was done
  /// to a handle, to which one that nobody has seen needs no answer.
  [[nodiscard]] const Kind* find(std::uint64_t index) const {
    const Directory* directory = directory_.load(std::memory_order_acquire);
    if (!directory) return nullptr;
    const std::uint64_t place = index / kSegmentSize + 1;
    const unsigned g = static_cast<unsigned>(std::bit_width(place)) - 1;
    Kind** group = directory->groups[g].load(std::memory_order_acquire);
    if (!group) return nullptr;
    const Kind* segment =
        AtomicRef<Kind*>(group[place - (std::uint64_t{1} << g)]).load(std::memory_order_acquire);
    return segment ? &segment[index % kSegmentSize] : nullptr;
  }
  /// Whether find() can give anything.
  [[nodiscard]] bool hasMadeAny() const {
    return directory_.load(std::memory_order_relaxed) != nullptr;
  }

  [[nodiscard]] Shared<Kind> sharedAt(std::uint64_t index) {
    return Shared<Kind>(owner_.shared_from_this(), &at(index));
  }

  [[nodiscard]] const LifeRecord& life() const { return owner_.life; }

 private:
  static constexpr std::uint64_t kSegmentSize = 64;
  static constexpr unsigned kGroups = 59;
  static_assert(std::is_trivially_destructible_v<Kind>);

  struct Directory {
    std::atomic<Kind**> groups[kGroups]{};
  };

  Kind* makeSegment(std::uint64_t first) {
    auto* segment = static_cast<Kind*>(::operator new(kSegmentSize * sizeof(Kind)));
    for (std::uint64_t i = 0; i < kSegmentSize; ++i) ::new (&segment[i]) Kind(owner_, first + i);
    return segment;
  }

  HandleOwner& owner_;
  std::atomic<Directory*> directory_{nullptr};
};

/// A handle that a caller made by hand.
template <class Kind>
class LoneHandle final : public HandleOwner {
 public:
  LoneHandle(Shared<LifeRecord> record, std::uint64_t identification)
      : HandleOwner(*record), keeper(std::move(record)), handle(*this, identification) {}

  const Shared<LifeRecord> keeper;
  Kind handle;
};

}  // namespace veq::internal
