#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "veq/formats/internal/lines.hpp"
#include "veq/formats/internal/read_context.hpp"
#include "veq/network/internal/network_draft.hpp"

namespace veq::internal {

/// What the lines of a Pajek file say of its vertices. It takes memory for what stands in the text,
/// not for the number of vertices that the text claims.
class PajekVertices {
 public:
  /// The number of the line's vertex, from 1; what else it says is kept.
  std::int64_t readLine(const LineReader& lines, ReadContext& context, unsigned firstCode);
  static constexpr unsigned kCodes = 4;

  /// Gives the draft, whose number of vertices is known, the columns "Name" and "Position".
  void finish(NetworkDraft& draft, ReadContext& context, unsigned firstCode);

 private:
  enum Code : unsigned { kNoNumber, kFurtherWords, kOpenQuote, kSomePositions };

  struct Name {
    std::uint64_t vertex;
    std::string_view text;
    bool quoted;
  };
  struct Position {
    std::uint64_t vertex;
    std::array<double, 3> at;
  };

  void readLabel(LineCursor& cursor, std::uint64_t vertex, const LineReader& lines,
                 ReadContext& context, unsigned firstCode);
  void readPosition(LineCursor& cursor, std::uint64_t vertex, Place place);

  std::int64_t last_ = 0;
  std::vector<Name> names_;
  std::vector<Position> positions_;
  /// Of the first line that has none.
  std::optional<Place> noPosition_;
};

}  // namespace veq::internal
