// How often a comparison of random inputs is repeated.
#pragma once

#include <algorithm>
#include <cstdlib>

namespace veq::test {

// All of them or, where the environment's VEQ_TEST_SHARE is a number above 1, the first of so many:
// what an emulator runs takes some fifty times as long.
inline int rounds(int all) {
  const char* const share = std::getenv("VEQ_TEST_SHARE");
  return share == nullptr ? all : std::max(1, all / std::max(1, std::atoi(share)));
}

}  // namespace veq::test
