/// \file
/// Whole files in and out, and why they could not be read or written.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "veq/base/export.hpp"
#include "veq/base/result.hpp"

namespace veq {

/// Takes the bytes of a file piece by piece; false where they do not arrive, and no more are
/// wanted.
/// \ingroup files
using ByteSink = std::function<bool(std::string_view)>;
/// Gives all bytes to a sink, and answers whether it took them all.
/// \ingroup files
using ByteSource = std::function<bool(const ByteSink&)>;

/// All bytes of a file, pipe or device; "-" is standard input, and "./-" a file of that name.
///
/// Where there are none the error is of ErrorKind::kFile and its text the system's own word,
/// without the path: "No such file or directory", "Permission denied", "Is a directory", "Too many
/// levels of symbolic links", "File name too long". What memory cannot hold is ErrorKind::kMemory.
/// \ingroup files
[[nodiscard]] VEQ_EXPORT Result<std::string> readFile(std::string_view path);

/// Writes a file atomically: until all has arrived on the disk the old file stands as it was, and
/// after a failure it still does, with no other file beside it. A symbolic link stays and its
/// target is replaced; the permissions are kept, and owner and group as far as the system lets us,
/// whoever may not write to the old file is refused. "-" is standard output, which is written in
/// place and flushed, as are pipes, devices and what names an open descriptor of this process
/// (/dev/stdout, /dev/fd/5).
///
/// Errors as in readFile: "No space left on device", "Permission denied", "Broken pipe", "File too
/// large" and so on; none of them raises a signal. "Operation canceled" where the source of the
/// bytes gives up by itself; what it throws goes through, and then nothing is written either.
/// \ingroup files
VEQ_EXPORT Outcome writeFile(std::string_view path, std::string_view bytes);
VEQ_EXPORT Outcome writeFile(std::string_view path, const ByteSource& bytes);

/// Why writeFile would fail before its first byte, as far as the system tells. Changes nothing: a
/// file is neither made nor emptied, a pipe not opened.
/// \ingroup files
[[nodiscard]] VEQ_EXPORT Outcome checkWritable(std::string_view path);

/// Removes the files that unfinished atomic writes of this process have made beside their targets.
/// For a program that is about to end by a signal, and safe in its handler. What nobody removes, as
/// when a process is killed, the next atomic write of the same target does.
/// \ingroup files
VEQ_EXPORT void removeTemporaryFiles() noexcept;

}  // namespace veq
