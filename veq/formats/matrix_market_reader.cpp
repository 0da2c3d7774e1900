#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <utility>

#include "veq/formats/internal/lines.hpp"
#include "veq/formats/internal/matrix_market.hpp"
#include "veq/formats/internal/text_columns.hpp"

namespace veq::internal {
namespace {

enum NoteCode : unsigned { kRounded, kFurtherWords, kAboveDiagonal };

enum class Symmetry { kGeneral, kSymmetric, kSkew };

struct Banner {
  bool coordinate = true;
  bool pattern = false;
  Symmetry symmetry = Symmetry::kGeneral;
};

[[noreturn]] void failUnsupported(const LineReader& lines, std::string_view word) {
  throw Error(ErrorKind::kUnsupported, "a matrix that is " + std::string(word) + " is not read",
              lines.place());
}

Banner readBanner(const LineReader& lines) {
  LineCursor cursor(lines.line());
  const auto nextWord = [&cursor] {
    cursor.skipBlanks();
    return cursor.takeWord();
  };
  nextWord();  // %%MatrixMarket
  if (!sameWord(nextWord(), "matrix")) failAt(lines.place(), "no \"matrix\" in the first line");
  Banner banner;
  const std::string_view layout = nextWord();
  banner.coordinate = sameWord(layout, "coordinate");
  if (!banner.coordinate && !sameWord(layout, "array")) {
    failAt(lines.place(), "neither \"coordinate\" nor \"array\": " + shown(layout));
  }
  const std::string_view field = nextWord();
  banner.pattern = sameWord(field, "pattern");
  if (sameWord(field, "complex")) failUnsupported(lines, "complex");
  if (!banner.pattern && !sameWord(field, "real") && !sameWord(field, "double") &&
      !sameWord(field, "integer")) {
    failAt(lines.place(), "no kind of numbers that is known: " + shown(field));
  }
  const std::string_view symmetry = nextWord();
  if (sameWord(symmetry, "hermitian")) failUnsupported(lines, "hermitian");
  if (sameWord(symmetry, "symmetric")) {
    banner.symmetry = Symmetry::kSymmetric;
  } else if (sameWord(symmetry, "skew-symmetric")) {
    banner.symmetry = Symmetry::kSkew;
  } else if (!sameWord(symmetry, "general")) {
    failAt(lines.place(), "no symmetry that is known: " + shown(symmetry));
  }
  if (banner.pattern && !banner.coordinate) {
    failAt(lines.place(), "an array cannot be a pattern");
  }
  return banner;
}

class MatrixReader {
 public:
  /// Edges go to the receiver, if there is one, and otherwise into a draft.
  MatrixReader(TextInput& text, ReadContext& context, const EdgeReceiver* receiver = nullptr)
      : lines_(text), context_(context), receiver_(receiver) {}

  MatrixHead readHead() {
    lines_.next();
    banner_ = readBanner(lines_);
    if (!nextLine()) failAt(lines_.place(), "no line with the size of the matrix");
    readSize();
    return {vertices(), isDirected(), !banner_.pattern};
  }

  NetworkDraft read() {
    readHead();
    from_.reserve(receiver_ ? kEdgesAtOnce
                            : std::min<std::uint64_t>(entries_, context_.mostVertices()));
    to_.reserve(from_.capacity());
    while (nextLine()) {
      if (lines_.number() % 4096 == 0) context_.pace.reach(lines_.position());
      LineCursor cursor = lines_.cursor();
      cursor.skipBlanks();
      if (banner_.coordinate) {
        readEntry(cursor);
      } else {
        readValues(cursor);
      }
    }
    return finish();
  }

 private:
  bool nextLine() {
    while (lines_.next()) {
      const std::string_view line = withoutBlanks(lines_.line());
      if (!line.empty() && line.front() != '%') return true;
    }
    return false;
  }

  std::uint64_t readCount(LineCursor& cursor, const char* what) {
    const char* const at = cursor.at();
    const std::optional<std::int64_t> count = cursor.readInteger();
    if (!count || *count < 0) {
      failAt(lines_.placeOf(at), std::string("no number of ") + what + ": " + shown(cursor.rest()));
    }
    cursor.skipBlanks();
    return static_cast<std::uint64_t>(*count);
  }

  void readSize() {
    LineCursor cursor(lines_.line());
    cursor.skipBlanks();
    rows_ = readCount(cursor, "rows");
    columns_ = readCount(cursor, "columns");
    if (banner_.coordinate) entries_ = readCount(cursor, "entries");
    twoModes_ = rows_ != columns_;
    if (twoModes_ && banner_.symmetry != Symmetry::kGeneral) {
      failAt(lines_.place(), "a matrix of " + size() + " cannot be symmetric");
    }
    sizePlace_ = lines_.place();
    context_.requireVerticesSoFar(vertices(), sizePlace_);
    if (banner_.symmetry == Symmetry::kSkew && !banner_.coordinate) row_ = 1;
  }

  /// Both are below 2^63, so that their sum is none that has gone round.
  [[nodiscard]] std::uint64_t vertices() const { return twoModes_ ? rows_ + columns_ : rows_; }
  [[nodiscard]] std::string size() const {
    return std::to_string(rows_) + " rows and " + std::to_string(columns_) + " columns";
  }

  void readEntry(LineCursor& cursor) {
    const std::uint64_t row = readIndex(cursor, rows_);
    const std::uint64_t column = readIndex(cursor, columns_);
    double value = 1.0;
    const char* const begin = cursor.at();
    if (!banner_.pattern) {
      const std::optional<double> read = cursor.readNumber();
      if (!read) failAt(lines_.placeOf(begin), "no number: " + shown(cursor.rest()));
      value = *read;
    }
    if (++read_ > entries_) {
      failAt(lines_.place(), "more than the " + std::to_string(entries_) + " entries of line " +
                                 std::to_string(sizePlace_.line));
    }
    append(row, column, value, static_cast<std::size_t>(cursor.at() - begin));
    cursor.skipBlanks();
    if (!cursor.atEnd()) {
      context_.note(kFurtherWords, NoteKind::kLeftOut, lines_.placeOf(cursor.at()),
                    [&] { return "what follows an entry is left out: " + shown(cursor.rest()); });
    }
  }

  std::uint64_t readIndex(LineCursor& cursor, std::uint64_t limit) {
    const char* const at = cursor.at();
    const std::optional<std::int64_t> index = cursor.readInteger();
    if (!index) failAt(lines_.placeOf(at), "no row and column: " + shown(cursor.rest()));
    if (*index < 1 || static_cast<std::uint64_t>(*index) > limit) {
      failAt(lines_.placeOf(at), std::to_string(*index) + " in a matrix of " + size());
    }
    cursor.skipBlanks();
    return static_cast<std::uint64_t>(*index - 1);
  }

  /// The numbers of an array stand column by column; of one that is symmetric, from the diagonal
  /// downwards, and of one that is skew-symmetric, below it.
  void readValues(LineCursor& cursor) {
    for (; !cursor.atEnd(); cursor.skipBlanks()) {
      const char* const begin = cursor.at();
      const std::optional<double> value = cursor.readNumber();
      if (!value) failAt(lines_.placeOf(begin), "no number: " + shown(cursor.rest()));
      if (row_ >= rows_ || column_ >= columns_) {
        failAt(lines_.placeOf(begin), "more numbers than those of " + size());
      }
      if (*value != 0.0) {
        append(row_, column_, *value, static_cast<std::size_t>(cursor.at() - begin));
      }
      if (++row_ < rows_) continue;
      ++column_;
      row_ = banner_.symmetry == Symmetry::kGeneral     ? 0
             : banner_.symmetry == Symmetry::kSymmetric ? column_
                                                        : column_ + 1;
    }
  }

  void append(std::uint64_t row, std::uint64_t column, double value, std::size_t length) {
    if (banner_.symmetry != Symmetry::kGeneral && column > row) {
      context_.note(kAboveDiagonal, NoteKind::kRepaired, lines_.place(), [] {
        return std::string(
            "an entry above the diagonal of a symmetric matrix is taken for one more edge");
      });
    }
    appendEdge(row, twoModes_ ? rows_ + column : column, value, length);
    // Each entry stands for its mirror image, too.
    if (banner_.symmetry == Symmetry::kSkew && row != column) {
      appendEdge(column, row, -value, length);
    }
  }

  void appendEdge(std::uint64_t from, std::uint64_t to, double value, std::size_t length) {
    from_.push_back(from);
    to_.push_back(to);
    if (receiver_) {
      if (from_.size() == kEdgesAtOnce) give();
      return;
    }
    if (!banner_.pattern && weights_.append(value, length)) weights_.setPlace(lines_.place());
  }

  void give() {
    (*receiver_)(from_, to_);
    from_.clear();
    to_.clear();
  }

  [[nodiscard]] bool isDirected() const {
    return !twoModes_ && banner_.symmetry != Symmetry::kSymmetric;
  }

  NetworkDraft finish() {
    if (receiver_) give();
    context_.requireVertices(vertices(), sizePlace_);
    if (banner_.coordinate && read_ != entries_) {
      failAt(sizePlace_, std::to_string(read_) + " entries instead of " + std::to_string(entries_));
    }
    const bool isWhole = column_ == columns_ || row_ >= rows_;
    if (!banner_.coordinate && !isWhole) {
      failAt(sizePlace_, "fewer numbers than those of " + size());
    }
    NetworkDraft draft;
    if (receiver_) return draft;
    draft.vertexCount = vertices();
    draft.directed = isDirected();
    if (twoModes_) draft.properties.vertices.set("Mode", modeColumn(rows_, draft.vertexCount));
    if (!banner_.pattern) weights_.finish(draft, context_, kRounded);
    draft.from = std::move(from_);
    draft.to = std::move(to_);
    return draft;
  }

  // Of those that go to a receiver.
  static constexpr std::uint64_t kEdgesAtOnce = std::uint64_t{1} << 17;

  LineReader lines_;
  ReadContext& context_;
  const EdgeReceiver* receiver_;
  Banner banner_;
  std::uint64_t rows_ = 0;
  std::uint64_t columns_ = 0;
  std::uint64_t entries_ = 0;
  std::uint64_t read_ = 0;
  Place sizePlace_;
  bool twoModes_ = false;
  std::uint64_t row_ = 0;
  std::uint64_t column_ = 0;
  RawVector<std::uint64_t> from_;
  RawVector<std::uint64_t> to_;
  WeightColumn weights_;
};

}  // namespace

NetworkDraft readMatrixMarket(TextInput& text, ReadContext& context) {
  return MatrixReader(text, context).read();
}

MatrixHead readMatrixHead(TextInput& text, ReadContext& context) {
  return MatrixReader(text, context).readHead();
}

void readMatrixEdges(TextInput& text, ReadContext& context, const EdgeReceiver& receiver) {
  static_cast<void>(MatrixReader(text, context, &receiver).read());
}

}  // namespace veq::internal
