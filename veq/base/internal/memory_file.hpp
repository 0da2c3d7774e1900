/// \file
/// Files in memory that are written once and then sealed, for processes to share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>

#include "veq/base/ownership.hpp"
#include "veq/base/result.hpp"

namespace veq::internal {

/// Memory of a file, for reading, as long as somebody holds the owner.
struct MappedBytes {
  std::span<const std::byte> bytes;
  Shared<const void> owner;
};

/// A sealed file: nobody can write to it or shorten it.
class MemoryFile {
 public:
  /// A file of so many bytes, more than 0, that are what `write` leaves in them; its error is this
  /// one's, and what it throws passes through. Other errors are of kind kUnsupported where the
  /// system has no such files, and of kind kFile.
  [[nodiscard]] static Result<Shared<const MemoryFile>> written(
      std::uint64_t size, const std::function<Outcome(std::span<std::byte>)>& write);
  ~MemoryFile();
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  [[nodiscard]] int descriptor() const;
  [[nodiscard]] std::uint64_t size() const { return size_; }

  /// The bytes of such a file, of this process or another. Errors of kind kFile, of kind kArgument
  /// for a file that is not sealed, and of kind kUnsupported.
  [[nodiscard]] static Result<MappedBytes> map(int descriptor);

 private:
  struct State;
  MemoryFile(std::unique_ptr<State> state, std::uint64_t size);

  std::unique_ptr<State> state_;
  std::uint64_t size_;
};

}  // namespace veq::internal
