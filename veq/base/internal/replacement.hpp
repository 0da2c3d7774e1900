/// \file
/// How a POSIX system puts a whole new file in the place of another.
#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <system_error>

#include "veq/base/internal/descriptor.hpp"
#include "veq/base/internal/temporary_names.hpp"

namespace veq::internal {

/// A file in the making. It lies in the folder of its target, without a name where the system knows
/// such files and else under a temporary one, and vanishes with this unless it was put in its
/// place.
class Replacement {
 public:
  /// `old` is the status of the target; null where nothing is there.
  Replacement(const std::filesystem::path& target, const struct stat* old);
  ~Replacement();
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;

  /// Why there is none.
  [[nodiscard]] const std::error_code& error() const { return error_; }
  /// The open file, to be written to.
  [[nodiscard]] int number() const { return file_.number(); }

  /// Gives it the old file's permissions, brings it onto the disk and puts it into its place.
  [[nodiscard]] std::error_code putInPlace();

 private:
  bool open();
  bool openWithoutName(mode_t mode);
  bool openNamed(const char* name, mode_t mode);
  template <class Make>
  bool makeNamed(Make make);
  bool takeOver() const;
  bool rename();
  bool linkAs(const char* name) const;

  const std::string name_;
  const TemporaryNames names_;
  const struct stat* const old_;
  std::error_code error_;
  /// All names are looked up in it, even if it is itself renamed meanwhile.
  Descriptor directory_;
  Descriptor file_;
  std::string temporary_;  ///< The name that it has at the moment, if any.
  RegisteredTemporary registered_;
};

}  // namespace veq::internal
