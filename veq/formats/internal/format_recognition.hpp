#pragma once

#include <optional>
#include <string_view>

#include "veq/base/export.hpp"
#include "veq/base/result.hpp"
#include "veq/formats/file_format.hpp"
#include "veq/formats/internal/text_input.hpp"

namespace veq::internal {

/// How the bytes of a file are compressed, "" where they are not: "gzip", "zstd", "bzip2", "xz".
[[nodiscard]] VEQ_EXPORT std::string_view compressionOf(std::string_view bytes);

/// Why the core does not read what is compressed so.
[[nodiscard]] VEQ_EXPORT Error compressedBy(std::string_view how);

/// Whether the bytes are an archive, which is no text.
[[nodiscard]] bool isArchive(std::string_view bytes);

/// The format of a text, from its content; the name's suffix decides where the content does not.
/// Nothing where neither does.
[[nodiscard]] std::optional<FileFormat> formatOfText(TextInput& text, std::string_view name);

/// Why files of the format are not "read" or "written": nothing here does it, or there is no such
/// format.
[[nodiscard]] Error unhandled(FileFormat format, std::string_view done);

}  // namespace veq::internal
