/// \file
/// Whole files in and out, by their paths. Failures are results; only std::bad_alloc is thrown, and
/// what a source of bytes throws.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <system_error>

#include "veq/base/files.hpp"
#include "veq/base/result.hpp"

namespace veq::internal {

/// Reads to the end of a file, pipe or device. A path with a NUL inside is an invalid argument.
[[nodiscard]] Result<std::string> readWholeFile(std::string_view path);

/// Writes the bytes; an error where not all of them arrived. A directory, an empty path and one
/// with a NUL inside are refused.
///
/// Atomically: as veq::writeFile. In place: an existing file is emptied first. After a failure no
/// file is left that was not there before.
[[nodiscard]] Outcome writeWholeFile(std::string_view path, const ByteSource& bytes,
                                     bool atomically);
[[nodiscard]] Outcome writeWholeFile(std::string_view path, std::string_view bytes,
                                     bool atomically);

[[nodiscard]] Outcome writeStandardOutput(const ByteSource& bytes);

[[nodiscard]] Outcome checkWritablePath(std::string_view path);

/// Gives the bytes in one piece; refers to them.
[[nodiscard]] ByteSource sourceOf(std::string_view bytes);

/// How much room a buffer with so many bytes is to have next: for the size that the system reports
/// and one byte more, so that the end is seen without growing, and then twice as much.
[[nodiscard]] std::size_t nextCapacity(std::size_t size, std::uint64_t expected);

/// What is wrong with a path whatever lies on the disk.
[[nodiscard]] std::error_code errorOfPath(std::string_view path);

/// What the system's last call in this thread failed with.
[[nodiscard]] std::error_code lastError();

/// With the system's own word for it.
[[nodiscard]] Error fileError(const std::error_code& error);

}  // namespace veq::internal
