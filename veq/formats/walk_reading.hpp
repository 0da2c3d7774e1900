/// \file
/// Reading walk-only networks, of which no more is ever held than they keep.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "veq/base/export.hpp"
#include "veq/base/result.hpp"
#include "veq/formats/reading.hpp"
#include "veq/natural/walk_network.hpp"

namespace veq {

/// How to read a walk-only network.
/// \ingroup files
struct WalkReadOptions {
  /// As for readNetwork, but that integers are always indices and weights never kept. The progress
  /// is by bytes of the file, each of which is read twice.
  ReadOptions reading{};
  /// Told the size after the first reading, before memory for the lists is taken.
  std::function<void(const WalkNetworkSize&)> announce{};
  /// A network that takes more bytes is an error. By default what this machine has, or the control
  /// groups of this process are allowed.
  std::optional<std::uint64_t> mostMemory{};
  /// So many further bytes for each vertex are to fit into that, for walks on it.
  std::uint64_t bytesBeside = 0;
  /// Where the bytes of a pipe go until all is read, by default the system's folder for temporary
  /// files.
  std::string spoolFolder{};
};

/// A walk-only network that was read, or why there is none; with the format and the notes, in both
/// cases.
/// \ingroup files
class VEQ_EXPORT WalkReading : public Result<WalkNetwork> {
 public:
  WalkReading(Result<WalkNetwork> result, std::optional<FileFormat> format, std::vector<Note> notes,
              std::uint64_t furtherNotes)
      : Result(std::move(result)),
        format_(format),
        notes_(std::move(notes)),
        furtherNotes_(furtherNotes) {}

  /// Nothing where none was recognised.
  [[nodiscard]] std::optional<FileFormat> format() const { return format_; }
  /// In the order of their first cases.
  [[nodiscard]] const std::vector<Note>& notes() const { return notes_; }
  /// How many more notes there were than were kept.
  [[nodiscard]] std::uint64_t furtherNotes() const { return furtherNotes_; }

 private:
  std::optional<FileFormat> format_;
  std::vector<Note> notes_;
  std::uint64_t furtherNotes_;
};

/// Reads a walk-only network from a list of edges between integers, which are its indices, a matrix
/// in Matrix Market form, or an archive that keeps everything. The vertices are numbered as
/// readNetwork numbers them with ReadOptions::idsAreIndices. Weights and properties are left out,
/// of which a note tells where there are any.
///
/// The file is read twice and never held, beside some tens of megabytes of it; what comes through a
/// pipe or standard input ("-") goes into a temporary file without a name, whose folder and size a
/// note tells. Errors are those of readNetwork and of WalkNetwork::fromEdges, and of kind
/// kUnsupported for what only a whole network holds: "\"Ada Bob\" is not two integers, with or
/// without a weight: a walk-only network has neither names nor columns"; "gml is read as a whole
/// network: a walk-only one is read from lists of integers, Matrix Market and archives"; "two kinds
/// of vertices are read as a whole network". Spooling: "spooling to /tmp: No space left on device".
/// \ingroup files
[[nodiscard]] VEQ_EXPORT WalkReading readWalkNetwork(const std::string& path,
                                                     const WalkReadOptions& options = {});

}  // namespace veq
