#include <gtest/gtest.h>

#include <cstdint>
#include <new>

#include "veq/base/internal/memory.hpp"

namespace veq::internal::required_memory_test {
namespace {

TEST(RequiredMemory, SmallSizesPass) {
  EXPECT_NO_THROW(requireMemory(0, 1));
  EXPECT_NO_THROW(requireMemory(1000, 40));
}

TEST(RequiredMemory, MoreThanAMachineHasThrows) {
  EXPECT_THROW(requireMemory(std::uint64_t{1} << 50, 1), std::bad_alloc);
  EXPECT_THROW(requireMemory(std::uint64_t{1} << 40, 1024), std::bad_alloc);
  EXPECT_THROW(requireMemory(UINT64_MAX, 40), std::bad_alloc);
}

}  // namespace
}  // namespace veq::internal::required_memory_test
