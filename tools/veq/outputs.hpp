/// \file
/// What a command is going to write, checked before it computes.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace veq::tool {

/// A file that an option names.
struct NamedFile {
  std::string option;
  std::string file;  // empty where the option is not given
};

/// Wrong usage where an output would overwrite what is read, or two outputs are one file.
void requireDistinct(const std::vector<std::string>& inputs, const std::vector<NamedFile>& outputs);

/// Whether both names are one regular file.
[[nodiscard]] bool areOneFile(const std::string& a, const std::string& b);

/// Where a command says what it did: standard output, or standard error where an output takes that.
[[nodiscard]] std::ostream& reportFor(const std::vector<NamedFile>& outputs);

}  // namespace veq::tool
