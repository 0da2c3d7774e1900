/// \file
/// Writing a network for whatever program is to read it.
#pragma once

#include <optional>
#include <string>

#include "veq/base/export.hpp"
#include "veq/base/progress.hpp"
#include "veq/base/result.hpp"
#include "veq/formats/file_format.hpp"
#include "veq/natural/network.hpp"

namespace veq {

/// How to write a network.
/// \ingroup files
struct WriteOptions {
  /// By default that of the file's suffix.
  std::optional<FileFormat> format{};
  Progress progress{};
  /// How many threads share the work, 0 being as many as the process may use; without it as many as
  /// parallelism() says. What comes of it does not depend on it.
  std::optional<unsigned> threads{};
};

/// Writes a network to a file, atomically; "-" is standard output. What the formats keep:
/// - GraphML: everything, but for characters that XML forbids, which become "?". Kinds of columns
///   that GraphML does not know stand in attributes of VEQ's own beside what others read.
/// - CSV: the edges with their weights and properties, one a line, and writeVertexTable() the
///   vertices. Ends are names where each vertex has one of its own, or else the column "Id", and
///   otherwise indices.
/// - GML: everything as text and numbers; vectors as text. Keys that GML does not allow are mapped
///   by comments at the head of the file.
/// - Matrix Market: the edges and their weights.
/// - Archive: everything; an object of the user's own as its archived form.
/// - The others as their published writers.
///
/// Errors: no format known for the file, a name that the format cannot hold, or why the file could
/// not be written. O(length of the text).
/// \ingroup files
VEQ_EXPORT Outcome writeNetwork(const Network& network, const std::string& path,
                                const WriteOptions& options = {});

/// The same as a string.
/// \ingroup files
[[nodiscard]] VEQ_EXPORT Result<std::string> networkText(const Network& network, FileFormat format,
                                                         const Progress& progress = {});

/// The vertices as a table to go with the edges of a CSV file: "Id", as the ends of the edges are
/// written, "Weight" where vertices have weights, "Label" for the column "Name", "Id 2" for a
/// column "Id" that the first one is not, and all other columns.
/// \ingroup files
VEQ_EXPORT Outcome writeVertexTable(const Network& network, const std::string& path,
                                    const Progress& progress = {});
/// The same as a string.
/// \ingroup files
[[nodiscard]] VEQ_EXPORT Result<std::string> vertexTableText(const Network& network,
                                                             const Progress& progress = {});

}  // namespace veq
