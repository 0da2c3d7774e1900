#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "veq/formats/internal/lines.hpp"
#include "veq/formats/internal/read_context.hpp"
#include "veq/network/internal/network_draft.hpp"
#include "veq/numeric/property_value.hpp"

namespace veq::internal {

/// What the lines of a Pajek file say of its vertices. It takes memory for what stands in the text,
/// not for the number of vertices that the text claims.
class PajekVertices {
 public:
  /// Makes room for the names of so many vertices, as far as a text of this length may have them.
  void reserve(std::uint64_t vertices, std::uint64_t length);
  /// The number of the line's vertex, from 1; what else it says is kept.
  std::int64_t readLine(const LineReader& lines, ReadContext& context, unsigned firstCode);
  static constexpr unsigned kCodes = 5;
  /// An error where the next word is an integer of more digits than a number of a vertex may have.
  static void requireNoHugeNumber(LineCursor cursor, const LineReader& lines);

  /// Gives the draft, whose number of vertices is known, the columns "Name" and "Position". The
  /// header is the place of what is said of vertices that have no line.
  void finish(NetworkDraft& draft, ReadContext& context, unsigned firstCode, Place header);

 private:
  enum Code : unsigned { kNoNumber, kFurtherWords, kOpenQuote, kSomePositions, kTwice };

  struct Name {
    std::uint64_t vertex;
    std::string_view text;
    std::uint64_t line;
    bool quoted;
  };
  struct Position {
    std::uint64_t vertex;
    std::array<double, 3> at;
  };

  void setName(std::uint64_t vertex, std::string_view text, bool quoted, std::uint64_t line);
  void readLabel(LineCursor& cursor, std::uint64_t vertex, const LineReader& lines,
                 ReadContext& context, unsigned firstCode);
  void readPosition(LineCursor& cursor, std::uint64_t vertex, Place place);

  std::int64_t last_ = 0;
  std::uint64_t linesRead_ = 0;
  /// Those of the first vertices, as long as these come in ascending order, and then the others.
  std::vector<PropertyValue> names_;
  std::vector<Name> furtherNames_;
  std::vector<Position> positions_;
  /// Of the first line that has none.
  std::optional<Place> noPosition_;
};

}  // namespace veq::internal
