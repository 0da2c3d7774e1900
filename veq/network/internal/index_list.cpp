#include "veq/network/internal/index_list.hpp"

#include <cstddef>

namespace veq::internal {
namespace {

// Signed and unsigned 64-bit integers are read as the same bits.
std::span<const std::uint64_t> sameBits(const VEQNumberArray& array) {
  return {static_cast<const std::uint64_t*>(array.VEQ_dataPointer()),
          static_cast<std::size_t>(array.count())};
}

}  // namespace

IndexList::IndexList(const VEQNumberArray& array) {
  if (array.elementType() == ElementType::kInteger ||
      array.elementType() == ElementType::kUnsignedInteger) {
    all_ = sameBits(array);
  } else {
    own_.resize(array.count());
    array.getUnsignedIntegerValues_count(own_.data(), own_.size());
    all_ = own_;
  }
}

}  // namespace veq::internal
