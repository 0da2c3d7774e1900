/// \file
/// What ends a command early.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace veq::tool {

/// Input or output fails: the program prints "veq: FILE: cause" and ends with exit code 1.
class Failure : public std::runtime_error {
 public:
  Failure(std::string_view file, std::string_view cause)
      : std::runtime_error(std::string(file) + ": " + std::string(cause)) {}
};

/// Wrong usage: the program prints "veq: REASON (see veq COMMAND --help)" and ends with exit code
/// 2. A reason begins with the option or argument that it is about.
class WrongUsage : public std::runtime_error {
 public:
  explicit WrongUsage(const std::string& reason) : std::runtime_error(reason) {}
};

}  // namespace veq::tool
