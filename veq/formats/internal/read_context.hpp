#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "veq/base/export.hpp"
#include "veq/base/internal/pace.hpp"
#include "veq/base/internal/team.hpp"
#include "veq/base/parallelism.hpp"
#include "veq/formats/reading.hpp"

namespace veq::internal {

/// What a text says, in quotes and printable, at most 60 characters of it.
[[nodiscard]] VEQ_EXPORT std::string shown(std::string_view text);

/// The end of a reader: an error of kind kFormat.
[[noreturn]] VEQ_EXPORT void failAt(Place place, std::string text);

/// What readers share: what they were asked, how far they are, and the notes that they take. A
/// note costs nothing but a count from its second case on.
class VEQ_EXPORT ReadContext {
 public:
  /// The options must outlive this.
  ReadContext(const ReadOptions& asked, std::uint64_t bytes)
      : options(asked), pace(asked.progress, bytes), bytes_(bytes) {}

  const ReadOptions& options;
  Pace pace;
  Team team{parallelism()};
  std::string title;
  /// For each key of columns that are several, the number of the last.
  std::map<std::pair<const void*, std::string>, std::uint64_t> furtherColumns;

  /// Cases of one code are one note, whose text is made for the first of them. A reader numbers its
  /// codes from 0. In strict reading the first note that is no kTaken ends it.
  template <class MakeText>
  void note(unsigned code, NoteKind kind, Place place, MakeText&& makeText) {
    if (code < seen_.size() && seen_[code] != 0) {
      if (seen_[code] <= notes_.size()) ++notes_[seen_[code] - 1].count;
      return;
    }
    if (code >= seen_.size()) seen_.resize(code + 1, 0);
    keep({kind, place, makeText(), 1});
    seen_[code] = notes_.size() + furtherNotes_;
  }
  /// A note of which each case is told.
  void noteEach(NoteKind kind, Place place, std::string text) {
    keep({kind, place, std::move(text), 1});
  }

  /// An error where the text asks for more vertices than it may. What asks for
  /// them can be told, as a number may stand there that is beyond all counts.
  void requireVertices(std::uint64_t vertices, Place place, std::string_view asking = {}) const;
  /// The same for a text that goes on, where its length may yet allow them; to be followed by the
  /// other.
  void requireVerticesSoFar(std::uint64_t vertices, Place place) const {
    if (!growing_ || options.mostVertices) requireVertices(vertices, place);
  }
  [[nodiscard]] std::uint64_t mostVertices() const;

  /// Counts cells of columns that no byte stands for, those of rows that say nothing; an error at
  /// placeOf() where they are more than a text of this length may have.
  template <class PlaceOf>
  void addUnsetCells(std::uint64_t cells, PlaceOf placeOf) {
    unsetCells_ += cells;
    if (cells != 0 && unsetCells_ > mostUnsetCells()) failForCells(placeOf());
  }

  /// How many bytes the text has.
  void setBytes(std::uint64_t bytes) { bytes_ = bytes; }
  /// Nobody knows: they are counted as they come.
  void expectMore() {
    growing_ = true;
    bytes_ = 0;
  }
  void addBytes(std::uint64_t bytes) { bytes_ += bytes; }
  void expectNoMore() { growing_ = false; }

  /// In the order of their places, those without one last.
  [[nodiscard]] std::vector<Note> takeNotes();
  [[nodiscard]] std::uint64_t furtherNotes() const { return furtherNotes_; }

 private:
  void keep(Note note);
  [[nodiscard]] std::uint64_t mostUnsetCells() const;
  [[noreturn]] void failForCells(Place place) const;

  std::uint64_t bytes_;
  std::uint64_t unsetCells_ = 0;
  bool growing_ = false;
  std::vector<Note> notes_;
  std::uint64_t furtherNotes_ = 0;
  /// For each code the number of its note, from 1, or 0.
  std::vector<std::uint64_t> seen_;
};

}  // namespace veq::internal
