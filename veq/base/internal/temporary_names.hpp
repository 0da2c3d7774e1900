/// \file
/// The names that files have beside the target of an atomic write until they take its place.
#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace veq::internal {

/// The names for one target. They are the same for every writer, so that each finds what a killed
/// one has left without having to list the directory. A writer holds a lock on its file as long as
/// it lives.
class TemporaryNames {
 public:
  static constexpr unsigned kCount = 8;

  explicit TemporaryNames(std::string_view target);

  /// One of the fixed names for a number below kCount; otherwise a name that nobody else has.
  [[nodiscard]] std::string operator[](unsigned number) const;

  /// Removes the files under the fixed names whose writers are gone.
  void removeOrphans(int directory) const;

 private:
  std::uint64_t hash_;
};

/// Takes the writer's lock without waiting; false where somebody else has it, which errno tells by
/// EWOULDBLOCK, or where the file system has no such locks.
[[nodiscard]] bool lockTemporary(int file);

/// Says, while it lives, that removeTemporaryFiles is to remove this file.
class RegisteredTemporary {
 public:
  RegisteredTemporary() = default;
  ~RegisteredTemporary() { release(); }
  RegisteredTemporary(const RegisteredTemporary&) = delete;
  RegisteredTemporary& operator=(const RegisteredTemporary&) = delete;

  void take(int directory, const std::string& name, const struct stat& file);
  void release();

 private:
  int slot_ = -1;
};

}  // namespace veq::internal
