#pragma once

#include <cstddef>

#include "tests/support/temporarily.hpp"
#include "veq/formats/internal/lines_ahead.hpp"

namespace veq::test {

/// As long as it lives, texts are cut behind the first line feed after so many bytes.
struct SmallPieces : Temporarily<std::size_t> {
  explicit SmallPieces(std::size_t size) : Temporarily(internal::TextPieces::pieceSize, size) {}
};

}  // namespace veq::test
