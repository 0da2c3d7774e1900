#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace veq::test {

/// What a child process ends with when it could not try what it was made for.
constexpr int kCannotTry = 77;

/// Runs f in a child process and gives what waitpid() says of its end. What f returns is the exit
/// status; expectations that fail in it are printed and make it 1.
template <class F>
int statusOfChild(F f) {
  std::fflush(nullptr);
  const pid_t child = ::fork();
  if (child < 0) return -1;
  if (child == 0) {
    const int status = f();
    std::fflush(nullptr);
    ::_exit(testing::Test::HasFailure() ? 1 : status);
  }
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

}  // namespace veq::test
