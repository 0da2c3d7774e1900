#pragma once

#include <cstdint>
#include <span>
#include <utility>

#include "veq/numeric/number_array.hpp"

namespace veq::internal {

/// Vertex indices in edge order, either its own or the caller's for the time of a call.
class IndexList {
 public:
  IndexList() = default;
  IndexList(RawVector<std::uint64_t> own) : own_(std::move(own)), all_(own_) {}
  explicit IndexList(std::span<const std::uint64_t> borrowed) : all_(borrowed) {}
  /// Borrows the elements of an array of unsigned or signed integers, and converts others. A
  /// negative index becomes one that cannot be.
  explicit IndexList(const VEQNumberArray& array);
  IndexList(IndexList&&) = default;
  IndexList& operator=(IndexList&&) = default;

  [[nodiscard]] std::span<const std::uint64_t> all() const { return all_; }

 private:
  RawVector<std::uint64_t> own_;
  std::span<const std::uint64_t> all_;
};

}  // namespace veq::internal
