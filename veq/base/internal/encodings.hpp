/// \file
/// Between the encodings of files and the UTF-8 that strings hold.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "veq/base/internal/team.hpp"

namespace veq::internal {

enum class ByteOrder { kLittleEndian, kBigEndian };

/// Overlong forms, surrogates and anything above U+10FFFF are not valid.
[[nodiscard]] bool isValidUtf8(std::string_view bytes);
/// The same on all threads of a team, in pieces of so many bytes.
[[nodiscard]] bool isValidUtf8(std::string_view bytes, Team& team,
                               std::size_t pieceSize = std::size_t{1} << 18);

/// Every byte is a character of ISO-8859-1.
[[nodiscard]] std::string utf8FromLatin1(std::string_view bytes);
/// Nothing if the text is no UTF-8 or holds a character above U+00FF.
[[nodiscard]] std::optional<std::string> latin1FromUtf8(std::string text);
/// Nothing if a byte is left over or a surrogate stands alone. A byte-order mark is a character.
[[nodiscard]] std::optional<std::string> utf8FromUtf16(std::string_view bytes, ByteOrder order);

/// The text without the one UTF-8 byte-order mark with which it may begin.
[[nodiscard]] std::string_view withoutByteOrderMark(std::string_view text);

/// UTF-8 from bytes of unknown encoding: the one that a byte-order mark names (UTF-8 or UTF-16 of
/// either order; the mark is dropped), else UTF-8 if the bytes are valid, else ISO-8859-1. Nothing
/// if the bytes break the encoding that their mark names.
[[nodiscard]] std::optional<std::string> decodeAutomatically(std::string bytes,
                                                             Team& team = Team::alone());

}  // namespace veq::internal
