/// \file
/// How many threads one call may use.
#pragma once

#include <optional>

#include "veq/base/export.hpp"

namespace veq::internal {

/// As long as it lives, parallelism() answers the number that it is given on the thread that made
/// it, 0 being as many as the process may use; without a number it changes nothing.
class VEQ_EXPORT OwnParallelism {
 public:
  explicit OwnParallelism(std::optional<unsigned> threads);
  ~OwnParallelism();
  OwnParallelism(const OwnParallelism&) = delete;
  OwnParallelism& operator=(const OwnParallelism&) = delete;

 private:
  unsigned before_;
};

}  // namespace veq::internal
