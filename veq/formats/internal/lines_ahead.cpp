#include "veq/formats/internal/lines_ahead.hpp"

namespace veq::internal {
namespace {

constexpr std::size_t kLongLine = 4096;

}  // namespace

void TextPieces::cut(std::string_view text, std::size_t most) {
  text_ = text;
  ends_.clear();
  std::size_t begin = 0;
  while (ends_.size() < most && begin < text.size()) {
    if (text.size() - begin <= pieceSize) {
      ends_.push_back(text.size());
      return;
    }
    // A line feed near, or none: looking on could mean looking through all the rest again and
    // again.
    const std::string_view near = text.substr(begin + pieceSize - 1, kLongLine);
    const std::size_t newline = near.find('\n');
    if (newline == text.npos) return;
    begin += pieceSize + newline;
    ends_.push_back(begin);
  }
}

}  // namespace veq::internal
