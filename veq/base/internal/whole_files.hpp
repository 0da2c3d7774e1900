/// \file
/// Whole files in and out. Failures are results; only std::bad_alloc is thrown.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace veq::internal {

enum class ReadFailure { kNone, kCannotBeOpened, kIsADirectory, kCannotBeRead };

struct FileContents {
  std::string bytes;
  ReadFailure failure = ReadFailure::kNone;

  explicit operator bool() const { return failure == ReadFailure::kNone; }
};

/// Reads to the end of a file, pipe or device. A path with a NUL inside cannot be opened.
[[nodiscard]] FileContents readWholeFile(std::string_view path);

/// "cannot be opened", "is a directory", "cannot be read"; empty for kNone.
[[nodiscard]] std::string_view textOf(ReadFailure failure);

/// Takes the bytes of a file piece by piece; false where they do not arrive, and no more are
/// wanted.
using ByteSink = std::function<bool(std::string_view)>;
/// Gives all bytes to a sink, and answers whether it took them all. Throws nothing.
using ByteSource = std::function<bool(const ByteSink&)>;

/// Writes the bytes and returns whether all of them arrived.
///
/// Atomically: into a new file beside the target, synced and renamed over it, so that the old or
/// the new file stands whole at every moment and a failure leaves no other file behind. A symbolic
/// link stays and its target is replaced; permissions (and owner, as far as the system lets us) are
/// kept; a file that may not be written to is refused. What is no regular file is written in place.
///
/// In place: an existing file is emptied first. After a failure no file is left that was not there
/// before. A directory, an empty path and one with a NUL inside are refused.
///
/// Broken pipes and file-size limits are results like any other failure: their signals do not reach
/// the process.
[[nodiscard]] bool writeWholeFile(std::string_view path, const ByteSource& bytes, bool atomically);
[[nodiscard]] bool writeWholeFile(std::string_view path, std::string_view bytes, bool atomically);

/// The path that a URL names: of "file:/path", "file:///path" and "file://localhost/path" the path,
/// percent-decoded; a text without a scheme (a letter, then letters, digits, "+", "-" and ".", up
/// to a colon) is itself a path. Nothing for another scheme or host, a path that is not absolute, a
/// broken escape, or a NUL.
[[nodiscard]] std::optional<std::string> pathFromUrl(std::string_view url);

}  // namespace veq::internal
