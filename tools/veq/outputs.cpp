#include "outputs.hpp"

#include <filesystem>
#include <iostream>
#include <system_error>

#include "failure.hpp"
#include "streams.hpp"

namespace veq::tool {

namespace fs = std::filesystem;

bool areOneFile(const std::string& a, const std::string& b) {
  std::error_code none;
  if (fs::exists(a, none) || fs::exists(b, none)) {
    // Devices and pipes may well be named twice.
    return fs::equivalent(a, b, none) && fs::is_regular_file(a, none);
  }
  return fs::weakly_canonical(a, none) == fs::weakly_canonical(b, none);
}

void requireDistinct(const std::vector<std::string>& inputs,
                     const std::vector<NamedFile>& outputs) {
  for (std::size_t i = 0; i < outputs.size(); ++i) {
    const std::string& file = outputs[i].file;
    if (file.empty()) continue;
    for (const std::string& input : inputs) {
      if (isStandardStream(file) || input.empty() || !areOneFile(file, input)) continue;
      throw WrongUsage(outputs[i].option + " would overwrite " + input + ", which is read");
    }
    for (std::size_t j = 0; j < i; ++j) {
      const std::string& other = outputs[j].file;
      const bool one = isStandardStream(file) || isStandardStream(other)
                           ? file == other
                           : !other.empty() && areOneFile(file, other);
      if (one) throw WrongUsage(outputs[j].option + " and " + outputs[i].option + " are one file");
    }
  }
}

std::ostream& reportFor(const std::vector<NamedFile>& outputs) {
  for (const NamedFile& output : outputs) {
    if (isStandardStream(output.file)) return std::cerr;
  }
  return std::cout;
}

}  // namespace veq::tool
