/// \file
/// Bytes that are read from the beginning more than once.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "veq/base/internal/byte_stream.hpp"
#include "veq/base/internal/file_calls.hpp"
#include "veq/base/internal/pace.hpp"

namespace veq::internal {

/// Those of a file, which is opened anew, or of a pipe, which is spooled.
class RepeatedBytes {
 public:
  /// Spools what can be read only once; throws Error. The pace is asked meanwhile.
  RepeatedBytes(const std::string& path, const std::string& spoolFolder, Pace& pace);

  /// From the first byte on; throws Error. They must outlive it.
  [[nodiscard]] ByteStream open() const;
  [[nodiscard]] std::uint64_t size() const { return size_; }
  /// The folder where they were spooled; null where they were not.
  [[nodiscard]] const std::string* spoolFolder() const {
    return spool_ ? &spool_->folder() : nullptr;
  }

 private:
  [[noreturn]] void failSpooling() const;

  std::string path_;
  std::unique_ptr<SpoolFile> spool_;
  std::uint64_t size_ = 0;
};

}  // namespace veq::internal
