/// \file
/// Runs the veq program as a shell would.
#pragma once

#include <string>
#include <vector>

namespace veq::test {

struct ProgramRun {
  int exitCode;
  std::string output;
  std::string errors;
};

/// Runs veq with the arguments; neither of its outputs is a terminal.
ProgramRun runVeq(const std::vector<std::string>& arguments);

/// Runs any command line; what it does not redirect itself is captured.
ProgramRun runShell(const std::string& command);

/// A new directory that disappears with all it holds.
class TemporaryDirectory {
 public:
  TemporaryDirectory();
  ~TemporaryDirectory();
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  [[nodiscard]] std::string path(const std::string& name) const { return path_ + "/" + name; }

  /// Makes a file of these bytes and returns its path.
  std::string write(const std::string& name, const std::string& bytes) const;

  /// The names in the directory, sorted.
  [[nodiscard]] std::vector<std::string> names() const;

 private:
  std::string path_;
};

[[nodiscard]] std::string contentsOf(const std::string& path);

}  // namespace veq::test
