#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "veq/base/internal/name_table.hpp"
#include "veq/numeric/number_array.hpp"

namespace veq::internal {

/// The ends of edges whose vertices are the distinct names among them, numbered by first
/// appearance, source before target, edge by edge.
class DistinctEnds {
 public:
  void add(std::string_view source, std::string_view target) {
    pending_.push_back(source);
    pending_.push_back(target);
    if (pending_.size() >= kBatch) finish();
  }
  /// A vertex that no edge brought; it is numbered like the end of an edge.
  void addAlone(std::string_view name) {
    finish();
    names_.table().forEach({&name, 1}, [&](const NameTable::Hashed& h) { names_.indexOf(h); });
  }
  /// To be called behind the last edge.
  void finish() {
    bool isSource = true;
    names_.table().forEach(pending_, [&](const NameTable::Hashed& name) {
      (isSource ? from_ : to_).push_back(names_.indexOf(name));
      isSource = !isSource;
    });
    pending_.clear();
  }

  [[nodiscard]] const std::vector<std::string_view>& names() const { return names_.names(); }
  [[nodiscard]] RawVector<std::uint64_t> takeFrom() { return std::move(from_); }
  [[nodiscard]] RawVector<std::uint64_t> takeTo() { return std::move(to_); }

 private:
  static constexpr std::size_t kBatch = 1024;

  NumberedNames names_;
  std::vector<std::string_view> pending_;
  RawVector<std::uint64_t> from_;
  RawVector<std::uint64_t> to_;
};

}  // namespace veq::internal
