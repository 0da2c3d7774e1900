/// \file
/// Reading a network from whatever file people have.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "veq/base/export.hpp"
#include "veq/base/progress.hpp"
#include "veq/base/result.hpp"
#include "veq/formats/file_format.hpp"
#include "veq/natural/network.hpp"

namespace veq {

/// How to read a network.
/// \ingroup files
struct ReadOptions {
  /// By default seen from the content; the suffix of the file only breaks ties.
  std::optional<FileFormat> format{};
  /// Whether a list of edges is directed. By default as the list itself says, and undirected where
  /// it says nothing. Other formats say it themselves.
  std::optional<bool> directed{};
  /// Takes the integers of a list for indices of vertices, instead of keeping them as a column
  /// "Id": the network then has all vertices from 0 to the largest.
  bool idsAreIndices = false;
  /// Makes the first note of something repaired or left out the error.
  bool strict = false;
  /// Keeps edge weights that a 32-bit float does not hold as they are, in an edge column "Weight".
  bool keepWeights = false;
  /// How many notes are kept; further ones are counted.
  std::uint64_t mostNotes = 100;
  /// More vertices than these are an error. By default 64 for each byte of text, and a million.
  std::optional<std::uint64_t> mostVertices{};
  /// A compressed file that holds more is an error. By default 64 times its size and a GiB.
  std::optional<std::uint64_t> mostBytes{};
  Progress progress{};
  /// How many threads share the work, 0 being as many as the process may use; without it as many as
  /// parallelism() says. What comes of it does not depend on it.
  std::optional<unsigned> threads{};
};

/// What kind of thing a note tells.
/// \ingroup files
enum class NoteKind {
  kTaken,     ///< How something was decided that the text leaves open.
  kRepaired,  ///< What was wrong, and what was made of it.
  kLeftOut,   ///< What the network does not hold.
};

/// Something that a person should know about what was read.
/// \ingroup files
struct Note {
  NoteKind kind;
  /// Of the first case.
  Place place;
  std::string text;
  /// How many such cases there are.
  std::uint64_t count = 1;
};

/// A network that was read, or why there is none; with the format that was recognised and what
/// there is to say about the text, in both cases.
/// \ingroup files
class VEQ_EXPORT Reading : public Result<Network> {
 public:
  Reading(Result<Network> result, std::optional<FileFormat> format, std::vector<Note> notes,
          std::uint64_t furtherNotes, std::string title)
      : Result(std::move(result)),
        format_(format),
        notes_(std::move(notes)),
        furtherNotes_(furtherNotes),
        title_(std::move(title)) {}

  /// Nothing where none was recognised.
  [[nodiscard]] std::optional<FileFormat> format() const { return format_; }
  /// In the order of their first cases.
  [[nodiscard]] const std::vector<Note>& notes() const { return notes_; }
  /// How many more notes there were than were kept.
  [[nodiscard]] std::uint64_t furtherNotes() const { return furtherNotes_; }
  /// What the file calls the network; empty where it does not.
  [[nodiscard]] const std::string& title() const { return title_; }

 private:
  std::optional<FileFormat> format_;
  std::vector<Note> notes_;
  std::uint64_t furtherNotes_;
  std::string title_;
};

/// Reads a network from a file. Never throws for bad input: what is wrong with the file is the
/// error, with its place where it has one. A network too large for memory is an error of kind
/// kMemory. Memory: that of the file and twice that of the network.
/// \ingroup files
[[nodiscard]] VEQ_EXPORT Reading readNetwork(const std::string& path,
                                             const ReadOptions& options = {});

/// The same from the bytes of a file. The name serves its suffix alone.
/// \ingroup files
[[nodiscard]] VEQ_EXPORT Reading readNetworkText(std::string bytes, const ReadOptions& options = {},
                                                 std::string_view name = {});

}  // namespace veq
