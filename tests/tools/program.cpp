#include "tests/tools/program.hpp"

#include <stdlib.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace veq::test {
namespace {

std::string quoted(const std::string& argument) {
  std::string result = "'";
  for (const char character : argument) {
    result += character == '\'' ? std::string("'\\''") : std::string(1, character);
  }
  return result + "'";
}

}  // namespace

ProgramRun runVeq(const std::vector<std::string>& arguments) {
  std::string command = quoted(VEQ_PROGRAM);
  for (const std::string& argument : arguments) command += " " + quoted(argument);
  return runShell(command);
}

ProgramRun runShell(const std::string& command) {
  const TemporaryDirectory directory;
  const std::string output = directory.path("output");
  const std::string errors = directory.path("errors");
  const int status = std::system(
      ("{ " + command + "; } >" + quoted(output) + " 2>" + quoted(errors) + " </dev/null").c_str());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contentsOf(output), contentsOf(errors)};
}

TemporaryDirectory::TemporaryDirectory()
    : path_((std::filesystem::temp_directory_path() / "veq-test-XXXXXX").string()) {
  if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no temporary directory");
}

TemporaryDirectory::~TemporaryDirectory() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string TemporaryDirectory::write(const std::string& name, const std::string& bytes) const {
  std::ofstream(path(name), std::ios::binary) << bytes;
  return path(name);
}

std::vector<std::string> TemporaryDirectory::names() const {
  std::vector<std::string> result;
  for (const auto& entry : std::filesystem::directory_iterator(path_)) {
    result.push_back(entry.path().filename().string());
  }
  std::sort(result.begin(), result.end());
  return result;
}

std::string contentsOf(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(stream)), {});
}

}  // namespace veq::test
