#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

namespace veq::fuzz {

/// Ends the program with a line that says which of its expectations failed, so that the fuzzer
/// keeps the input.
[[noreturn]] inline void fail(const char* file, int line, const std::string& what) {
  std::fprintf(stderr, "%s:%d: %s\n", file, line, what.c_str());
  std::abort();
}

}  // namespace veq::fuzz

/// Holds in every build, unlike assert.
#define VEQ_CHECK(condition)                                             \
  do {                                                                   \
    if (!(condition)) ::veq::fuzz::fail(__FILE__, __LINE__, #condition); \
  } while (false)

/// The text is empty, or else the failure.
#define VEQ_CHECK_NO(difference)                            \
  do {                                                      \
    const std::string veqDifference = (difference);         \
    if (!veqDifference.empty()) {                           \
      ::veq::fuzz::fail(__FILE__, __LINE__, veqDifference); \
    }                                                       \
  } while (false)
