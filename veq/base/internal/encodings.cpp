#include "veq/base/internal/encodings.hpp"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace veq::internal {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

unsigned byteAt(std::string_view bytes, std::size_t i) {
  return static_cast<unsigned char>(bytes[i]);
}

/// How many bytes from `i` are ASCII, at least in steps of eight.
std::size_t asciiEnd(std::string_view bytes, std::size_t i) {
  for (; bytes.size() - i >= 8; i += 8) {
    std::uint64_t eight;
    std::memcpy(&eight, bytes.data() + i, sizeof eight);
    if (eight & 0x8080808080808080u) break;
  }
  while (i < bytes.size() && byteAt(bytes, i) < 0x80) ++i;
  return i;
}

/// The length of the character that begins at `i` and is not ASCII; 0 if there is none.
std::size_t characterLength(std::string_view bytes, std::size_t i) {
  const unsigned lead = byteAt(bytes, i);
  const std::size_t length = lead >= 0xC2 && lead <= 0xDF   ? 2
                             : lead >= 0xE0 && lead <= 0xEF ? 3
                             : lead >= 0xF0 && lead <= 0xF4 ? 4
                                                            : 0;
  if (length == 0 || bytes.size() - i < length) return 0;
  // The second byte rules out overlong forms, surrogates and what lies above U+10FFFF.
  const unsigned lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  const unsigned highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  const unsigned second = byteAt(bytes, i + 1);
  if (second < lowest || second > highest) return 0;
  for (std::size_t k = 2; k < length; ++k) {
    if ((byteAt(bytes, i + k) & 0xC0) != 0x80) return 0;
  }
  return length;
}

void appendCharacter(std::string& out, std::uint32_t code) {
  const auto put = [&](std::uint32_t byte) { out += static_cast<char>(byte); };
  if (code < 0x80) return put(code);
  if (code < 0x800) {
    put(0xC0 | code >> 6);
  } else {
    if (code < 0x10000) {
      put(0xE0 | code >> 12);
    } else {
      put(0xF0 | code >> 18);
      put(0x80 | (code >> 12 & 0x3F));
    }
    put(0x80 | (code >> 6 & 0x3F));
  }
  put(0x80 | (code & 0x3F));
}

bool startsWith(std::string_view bytes, std::string_view prefix) {
  return bytes.substr(0, prefix.size()) == prefix;
}

}  // namespace

bool isValidUtf8(std::string_view bytes) {
  for (std::size_t i = asciiEnd(bytes, 0); i < bytes.size(); i = asciiEnd(bytes, i)) {
    const std::size_t length = characterLength(bytes, i);
    if (length == 0) return false;
    i += length;
  }
  return true;
}

bool isValidUtf8(std::string_view bytes, Team& team, std::size_t pieceSize) {
  // A piece begins where a character may. Where none does for so many bytes nothing is valid.
  const auto beginOf = [&](std::uint64_t piece) {
    std::size_t at = static_cast<std::size_t>(piece) * pieceSize;
    if (at == 0 || at >= bytes.size()) return std::min(at, bytes.size());
    const std::size_t last = std::min(at + 3, bytes.size());
    while (at < last && (byteAt(bytes, at) & 0xC0) == 0x80) ++at;
    return at;
  };
  std::atomic<bool> isValid{true};
  const std::uint64_t pieces = bytes.size() / pieceSize + 1;
  team.forEachPiece(pieces, bytes.size(), [&](std::uint64_t piece) {
    if (!isValid.load(std::memory_order_relaxed)) return;
    const std::size_t begin = beginOf(piece);
    if (!isValidUtf8(bytes.substr(begin, beginOf(piece + 1) - begin))) {
      isValid.store(false, std::memory_order_relaxed);
    }
  });
  return isValid.load(std::memory_order_relaxed);
}

std::string utf8FromLatin1(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  std::size_t i = 0;
  while (i < bytes.size()) {
    const std::size_t ascii = asciiEnd(bytes, i);
    text.append(bytes, i, ascii - i);
    i = ascii;
    if (i < bytes.size()) appendCharacter(text, byteAt(bytes, i++));
  }
  return text;
}

std::optional<std::string> latin1FromUtf8(std::string text) {
  // What results is never longer, so it takes the place of the text.
  std::size_t end = asciiEnd(text, 0);
  for (std::size_t i = end; i < text.size();) {
    // U+0080 to U+00FF are the characters of two bytes whose first is C2 or C3.
    if (characterLength(text, i) != 2 || byteAt(text, i) > 0xC3) return std::nullopt;
    text[end++] = static_cast<char>((byteAt(text, i) & 0x03) << 6 | (byteAt(text, i + 1) & 0x3F));
    i += 2;
    const std::size_t ascii = asciiEnd(text, i);
    std::memmove(&text[end], &text[i], ascii - i);
    end += ascii - i;
    i = ascii;
  }
  text.resize(end);
  return text;
}

std::optional<std::string> utf8FromUtf16(std::string_view bytes, ByteOrder order) {
  if (bytes.size() % 2 != 0) return std::nullopt;
  const std::size_t high = order == ByteOrder::kBigEndian ? 0 : 1;
  const auto unitAt = [&](std::size_t i) -> std::uint32_t {
    return byteAt(bytes, i + high) << 8 | byteAt(bytes, i + 1 - high);
  };
  std::string text;
  text.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i < bytes.size(); i += 2) {
    std::uint32_t code = unitAt(i);
    if (code >= 0xD800 && code <= 0xDFFF) {
      if (code >= 0xDC00 || bytes.size() - i < 4) return std::nullopt;
      const std::uint32_t low = unitAt(i + 2);
      if (low < 0xDC00 || low > 0xDFFF) return std::nullopt;
      code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
      i += 2;
    }
    appendCharacter(text, code);
  }
  return text;
}

std::string_view withoutByteOrderMark(std::string_view text) {
  return startsWith(text, kUtf8Mark) ? text.substr(kUtf8Mark.size()) : text;
}

std::optional<std::string> decodeAutomatically(std::string bytes, Team& team) {
  const std::string_view all = bytes;
  if (startsWith(all, "\xFF\xFE")) return utf8FromUtf16(all.substr(2), ByteOrder::kLittleEndian);
  if (startsWith(all, "\xFE\xFF")) return utf8FromUtf16(all.substr(2), ByteOrder::kBigEndian);
  const bool isMarked = startsWith(all, kUtf8Mark);
  if (!isValidUtf8(all, team)) {
    if (isMarked) return std::nullopt;
    return utf8FromLatin1(all);
  }
  if (isMarked) bytes.erase(0, kUtf8Mark.size());
  return bytes;
}

}  // namespace veq::internal
