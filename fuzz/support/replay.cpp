// Runs a target over inputs where there is no fuzzer: every compiler replays the corpus like this.
// Of a file that ends in ".inputs" each line is an input, as scripts/corpus writes them; any other
// file is one.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>

#include "fuzz/support/target.hpp"

namespace {

void run(const std::string& input) {
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
}

std::optional<int> hexDigit(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
  return std::nullopt;
}

// What stands behind a backslash: another one, n for a line feed, or x and the two digits of a
// byte.
std::optional<char> escaped(std::string_view& rest) {
  const char kind = rest.empty() ? '\0' : rest.front();
  rest.remove_prefix(rest.empty() ? 0 : 1);
  if (kind == '\\') return '\\';
  if (kind == 'n') return '\n';
  if (kind != 'x' || rest.size() < 2) return std::nullopt;
  const std::optional<int> high = hexDigit(rest[0]);
  const std::optional<int> low = hexDigit(rest[1]);
  rest.remove_prefix(2);
  if (!high || !low) return std::nullopt;
  return static_cast<char>(*high * 16 + *low);
}

std::optional<std::string> inputOf(std::string_view line) {
  std::string input;
  while (!line.empty()) {
    char byte = line.front();
    line.remove_prefix(1);
    if (byte == '\\') {
      const std::optional<char> meant = escaped(line);
      if (!meant) return std::nullopt;
      byte = *meant;
    }
    input += byte;
  }
  return input;
}

// How many inputs there were; none where the file cannot be read or a line is no input. The last
// line printed names the input that fails.
std::size_t replayLines(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::size_t number = 0;
  for (std::string line; std::getline(file, line);) {
    std::cerr << path.string() << ':' << ++number << '\n';
    const std::optional<std::string> input = inputOf(line);
    if (!input) return 0;
    run(*input);
  }
  return number;
}

std::size_t replayFile(const std::filesystem::path& path) {
  std::cerr << path.string() << '\n';
  std::ifstream file(path, std::ios::binary);
  if (!file) return 0;
  run({std::istreambuf_iterator<char>(file), {}});
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    const std::filesystem::path path = argv[i];
    // A corpus that has been moved away must not pass for one that replays well.
    if ((path.extension() == ".inputs" ? replayLines(path) : replayFile(path)) == 0) return 1;
  }
  return argc > 1 ? 0 : 1;
}
