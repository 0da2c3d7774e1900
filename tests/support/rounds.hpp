// How often a comparison of random inputs is repeated.
#pragma once

#include <algorithm>
#include <cstdlib>

namespace veq::test {

// What the environment's VEQ_TEST_SHARE divides by, where it is a number above 1: what an emulator
// runs takes some fifty times as long, and what sanitizers watch several times as long.
inline int share() {
  const char* const text = std::getenv("VEQ_TEST_SHARE");
  return text == nullptr ? 1 : std::max(1, std::atoi(text));
}

// All of them, or the first of so many.
inline int rounds(int all) { return std::max(1, all / share()); }

}  // namespace veq::test
