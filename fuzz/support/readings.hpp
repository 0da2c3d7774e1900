#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "veq/base/internal/byte_stream.hpp"
#include "veq/formats/reading.hpp"

namespace veq::fuzz {

using ReadText = std::function<Reading(std::string, const ReadOptions&, std::string_view)>;

/// Reads the bytes, of which the last chooses among the options, and holds what comes of it against
/// what is promised: a sound network that every format takes or a sentence why there is none, and
/// places in the text; the same once more, and in strict reading the same or the first thing that
/// is repaired or left out; an archive of it that gives it back.
void checkReading(std::string_view bytes, const ReadText& read,
                  std::optional<FileFormat> format = std::nullopt);

/// Holds what comes of bytes that arrive by small pieces against what comes of all of them at once.
using ReadStream =
    std::function<Reading(internal::ByteStream&, const ReadOptions&, std::string_view)>;
void checkPieces(std::string_view bytes, const ReadStream& read,
                 std::optional<FileFormat> format = std::nullopt);

/// By the core's reader.
void checkReading(std::string_view bytes, std::optional<FileFormat> format = std::nullopt);

}  // namespace veq::fuzz
