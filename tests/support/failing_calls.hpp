#pragma once

#include <cstdint>
#include <string>

namespace veq::test {

/// Makes calls of the operating system's file functions go wrong: those that the library makes in
/// this thread. Linked only into the program of these tests, see tests/CMakeLists.txt.
class FailingCall {
 public:
  enum class Mode {
    /// The n-th call fails with the error, a close after having closed.
    kFail,
    /// All calls from the n-th on fail, except those that close or remove.
    kFailFrom,
    /// The n-th call is interrupted by a signal where it can be. A close has closed even then.
    kInterrupt,
    /// The process is killed before the n-th call, after it, or where it is a write half way.
    kKillBefore,
    kKillAfter,
    kKillHalfWay,
    /// Every write writes one byte only.
    kShortWrites,
  };

  FailingCall(std::uint64_t n, Mode mode, int error = 0);
  ~FailingCall();
  FailingCall(const FailingCall&) = delete;
  FailingCall& operator=(const FailingCall&) = delete;

  /// Whether a call was made to fail.
  static bool happened();
  /// The calls that this thread has made while the last one of these lived: their number, and their
  /// names with a blank behind each, "fsync_directory" for that of a directory.
  static std::uint64_t calls();
  static const std::string& trace();
};

/// While this lives, this thread's file system knows no files without names.
class OnlyNamedFiles {
 public:
  OnlyNamedFiles();
  ~OnlyNamedFiles();
  OnlyNamedFiles(const OnlyNamedFiles&) = delete;
  OnlyNamedFiles& operator=(const OnlyNamedFiles&) = delete;

 private:
  bool before_;
};

}  // namespace veq::test
