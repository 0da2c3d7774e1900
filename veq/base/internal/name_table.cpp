#include "veq/base/internal/name_table.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

#include "veq/base/internal/entropy.hpp"
#include "veq/base/internal/uint128.hpp"

namespace veq::internal {
namespace {

/// Both halves of the product, of which every bit depends on all bits of the factors.
std::uint64_t fold(std::uint64_t a, std::uint64_t b) {
  const Uint128 product = Uint128{a} * b;
  return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

std::uint64_t bytesAt(const char* at, std::size_t count) {
  std::uint64_t bytes = 0;
  std::memcpy(&bytes, at, count);
  return bytes;
}

/// Another function in every process, so that no file can hold names which all collide.
std::uint64_t hashOf(std::string_view name) {
  static const std::uint64_t seed = std::uint64_t{systemEntropy()} << 32 | systemEntropy();
  constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15;
  std::uint64_t hash = fold(seed ^ name.size(), kOdd);
  const char* at = name.data();
  std::size_t left = name.size();
  for (; left > 8; at += 8, left -= 8) hash = fold(hash ^ bytesAt(at, 8), seed | 1);
  if (left > 0) hash = fold(hash ^ bytesAt(at, left), seed | 1);
  return fold(hash, kOdd);
}

std::uint64_t headOf(std::string_view name) {
  return name.empty() ? 0 : bytesAt(name.data(), std::min<std::size_t>(name.size(), 8));
}

}  // namespace

NameTable::Hashed NameTable::hashed(std::string_view name) { return {name, hashOf(name)}; }

bool NameTable::holds(const Slot& slot, const Hashed& name) {
  if (slot.hash != name.hash || slot.size != name.name.size()) return false;
  if (slot.head != headOf(name.name)) return false;
  return slot.size <= 8 || std::memcmp(slot.data, name.name.data(), slot.size) == 0;
}

void NameTable::prefetch(const Hashed& name) const {
#if defined(__GNUC__)
  internal::prefetch(&slots_[name.hash & (slots_.size() - 1)]);
#endif
}

std::uint64_t NameTable::insert(const Hashed& name, std::uint64_t index) {
  std::size_t at = slotOf(name);
  if (slots_[at].indexPlusOne != 0) return slots_[at].indexPlusOne - 1;
  if (2 * (used_ + 1) > slots_.size()) {
    grow();
    at = slotOf(name);
  }
  slots_[at] = {name.hash, headOf(name.name), name.name.data(), name.name.size(), index + 1};
  ++used_;
  return index;
}

std::optional<std::uint64_t> NameTable::find(const Hashed& name) const {
  const Slot& slot = slots_[slotOf(name)];
  return slot.indexPlusOne == 0 ? std::nullopt : std::optional(slot.indexPlusOne - 1);
}

std::size_t NameTable::slotOf(const Hashed& name) const {
  const std::uint64_t mask = slots_.size() - 1;
  std::uint64_t at = name.hash & mask;
  while (slots_[at].indexPlusOne != 0 && !holds(slots_[at], name)) at = (at + 1) & mask;
  return at;
}

void NameTable::grow() {
  Block<Slot> larger(2 * slots_.size());
  const std::uint64_t mask = larger.size() - 1;
  for (std::uint64_t i = 0; i < slots_.size(); ++i) {
    if (slots_[i].indexPlusOne == 0) continue;
    std::uint64_t at = slots_[i].hash & mask;
    while (larger[at].indexPlusOne != 0) at = (at + 1) & mask;
    larger[at] = slots_[i];
  }
  slots_ = std::move(larger);
}

}  // namespace veq::internal
