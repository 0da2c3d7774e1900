#pragma once

#include <cstddef>
#include <utility>

#include "veq/formats/internal/lines_ahead.hpp"

namespace veq::test {

/// As long as it lives, texts are cut behind the first line feed after so many bytes.
class SmallPieces {
 public:
  explicit SmallPieces(std::size_t size)
      : usual_(std::exchange(internal::TextPieces::pieceSize, size)) {}
  ~SmallPieces() { internal::TextPieces::pieceSize = usual_; }
  SmallPieces(const SmallPieces&) = delete;
  SmallPieces& operator=(const SmallPieces&) = delete;

 private:
  std::size_t usual_;
};

}  // namespace veq::test
