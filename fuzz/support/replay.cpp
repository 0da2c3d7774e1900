// Runs a target over files that are given by name, or lie in folders given by name, where there is
// no fuzzer: every compiler replays the corpus like this.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz/support/target.hpp"

namespace {

std::vector<std::filesystem::path> filesIn(const std::filesystem::path& place) {
  if (!std::filesystem::is_directory(place)) return {place};
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(place)) {
    files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

int main(int argc, char** argv) {
  std::size_t replayed = 0;
  for (int i = 1; i < argc; ++i) {
    for (const auto& path : filesIn(argv[i])) {
      // The last line names the file that fails.
      std::fprintf(stderr, "%s\n", path.c_str());
      std::ifstream file(path, std::ios::binary);
      if (!file) return 1;
      const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
      LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
      ++replayed;
    }
  }
  // A corpus that has been moved away must not pass for one that replays well.
  return replayed > 0 ? 0 : 1;
}
