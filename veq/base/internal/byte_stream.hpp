/// \file
/// Bytes that come piece by piece.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "veq/base/export.hpp"
#include "veq/base/result.hpp"

namespace veq::internal {

/// The bytes of a file, of standard input, or of whatever else gives them. Nothing is read that
/// nobody asks for. Everything throws Error where the bytes do not arrive.
class VEQ_EXPORT ByteStream {
 public:
  /// Reads into a buffer; answers for how many bytes, 0 at the end alone.
  using Fill = std::function<std::size_t(char* into, std::size_t capacity)>;
  /// What is read at once.
  static constexpr std::size_t kPiece = std::size_t{1} << 18;

  explicit ByteStream(std::string bytes)
      : ahead_(std::move(bytes)), expected_(ahead_.size()), ended_(true) {}
  /// Expects so many bytes; 0 where that is not known, and then they are read by pieces.
  ByteStream(Fill fill, std::uint64_t expected, std::size_t piece = kPiece)
      : fill_(std::move(fill)), expected_(expected), piece_(piece) {}

  [[nodiscard]] std::uint64_t expected() const { return expected_; }
  [[nodiscard]] std::size_t pieceSize() const { return piece_; }
  /// The next bytes, which stay: as many as a piece has, or all.
  [[nodiscard]] std::string_view head();
  /// Takes the next bytes: how many, 0 at the end alone.
  [[nodiscard]] std::size_t read(char* into, std::size_t capacity);
  /// Takes all that is left.
  [[nodiscard]] std::string takeRest();

 private:
  /// Reads on until there are so many bytes ahead.
  void fillUpTo(std::size_t size);

  Fill fill_;
  /// What has been read and not been taken, from a place on.
  std::string ahead_;
  std::size_t taken_ = 0;
  std::uint64_t expected_;
  std::size_t piece_ = kPiece;
  bool ended_ = false;
};

/// A file, pipe or device. Errors are those of veq::readFile.
[[nodiscard]] Result<ByteStream> openedFile(std::string_view path);
/// The same, but "-" is standard input.
[[nodiscard]] VEQ_EXPORT Result<ByteStream> openedInput(std::string_view path);

/// All that is left of what was opened.
[[nodiscard]] Result<std::string> readRest(Result<ByteStream> bytes);

}  // namespace veq::internal
