#include "veq/formats/internal/read_context.hpp"

#include <algorithm>
#include <limits>

namespace veq::internal {
namespace {

/// Of what is nowhere in a text so much may follow from it, that thirty bytes ask for no gigabytes.
std::uint64_t mostOf(std::uint64_t bytes) {
  constexpr std::uint64_t kEachByte = 64;
  constexpr std::uint64_t kAtLeast = 1'000'000;
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max() / 2;
  return bytes > (kMost - kAtLeast) / kEachByte ? kMost : kEachByte * bytes + kAtLeast;
}

}  // namespace

std::string shown(std::string_view text) {
  constexpr std::size_t kMost = 60;
  std::string result = "\"";
  std::size_t characters = 0;
  for (const char byte : text) {
    const auto code = static_cast<unsigned char>(byte);
    // Bytes that go on with a character of UTF-8 belong to the one before.
    if ((code & 0xC0) != 0x80 && ++characters > kMost) return result + "...\"";
    result += code < 0x20 || code == 0x7F ? '?' : byte;
  }
  return result + "\"";
}

void failAt(Place place, std::string text) {
  throw Error(ErrorKind::kFormat, std::move(text), place);
}

void ReadContext::keep(Note note) {
  if (options.strict && note.kind != NoteKind::kTaken) failAt(note.place, std::move(note.text));
  if (notes_.size() < options.mostNotes) {
    notes_.push_back(std::move(note));
  } else {
    ++furtherNotes_;
  }
}

std::vector<Note> ReadContext::takeNotes() {
  std::stable_sort(notes_.begin(), notes_.end(), [](const Note& a, const Note& b) {
    // A place that nobody knows, 0, becomes the largest of all.
    return a.place.line - 1 < b.place.line - 1;
  });
  return std::move(notes_);
}

std::uint64_t ReadContext::mostVertices() const {
  return options.mostVertices.value_or(mostOf(bytes_));
}

std::uint64_t ReadContext::mostUnsetCells() const { return mostOf(bytes_); }

void ReadContext::failForCells(Place place) const {
  failAt(place, "columns with more than the " + std::to_string(mostUnsetCells()) +
                    " cells without a value that a text of " + std::to_string(bytes_) +
                    " bytes may have");
}

void ReadContext::requireVertices(std::uint64_t vertices, Place place,
                                  std::string_view asking) const {
  if (vertices <= mostVertices()) return;
  std::string text = asking.empty() ? std::to_string(vertices) + " vertices" : std::string(asking);
  text += ", more than the " + std::to_string(mostVertices()) + " that ";
  text += options.mostVertices ? "are allowed"
                               : "a text of " + std::to_string(bytes_) + " bytes may have";
  failAt(place, std::move(text));
}

}  // namespace veq::internal
