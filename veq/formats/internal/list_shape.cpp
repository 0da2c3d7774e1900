#include "veq/formats/internal/list_shape.hpp"

#include <algorithm>
#include <array>
#include <vector>

#include "veq/formats/internal/lines.hpp"
#include "veq/formats/internal/list_rows.hpp"

namespace veq::internal {
namespace {

using Fields = std::vector<std::string_view>;

constexpr std::array<std::string_view, 10> kSourceWords{
    "source",    "from",    "src",   "fromnodeid", "sourceid",
    "source_id", "from_id", "node1", "u",          "tail"};
constexpr std::array<std::string_view, 10> kTargetWords{
    "target", "to", "dst", "tonodeid", "targetid", "target_id", "to_id", "node2", "v", "head"};
constexpr std::array<std::string_view, 3> kWeightWords{"weight", "value", "strength"};

template <std::size_t kCount>
bool isOneOf(std::string_view word, const std::array<std::string_view, kCount>& words) {
  return std::any_of(words.begin(), words.end(),
                     [word](std::string_view each) { return sameWord(word, each); });
}

template <std::size_t kCount>
std::size_t columnOf(const Fields& header, const std::array<std::string_view, kCount>& words) {
  const auto at = std::find_if(header.begin(), header.end(),
                               [&](std::string_view field) { return isOneOf(field, words); });
  return at == header.end() ? ListShape::kNone : static_cast<std::size_t>(at - header.begin());
}

bool isInteger(std::string_view text) {
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) text.remove_prefix(1);
  return !text.empty() && std::all_of(text.begin(), text.end(), isDigit);
}

/// Tabs where there are any, unless all that stands between blanks is a number anyway; then
/// semicolons, commas and blanks.
char separatorOf(std::string_view line) {
  // Which keeps the fields whose quotes had to be undone.
  FieldSplitter splitter(' ');
  Fields words;
  splitter.split(line, words);
  const bool hasNumbersOnly =
      std::all_of(words.begin(), words.end(), [](std::string_view w) { return wholeNumber(w); });
  if (hasNumbersOnly && words.size() > 1) return ' ';
  if (line.find('\t') != line.npos) return '\t';
  if (line.find(';') != line.npos) return ';';
  if (line.find(',') != line.npos) return ',';
  return ' ';
}

/// What the comments of public collections say: "% asym weighted", "% 78 34 34", and
/// "# Directed graph".
class CommentReader {
 public:
  void read(std::string_view comment, ListShape& shape) {
    LineCursor cursor(comment);
    const char mark = *cursor.at();
    cursor.takeWord();
    Fields words;
    FieldSplitter splitter(' ');
    splitter.split(comment.substr(comment.find_first_not_of("#%/ \t")), words);
    if (words.empty()) return;
    if (mark == '%') return readTagged(words, shape);
    if (words.size() > 1 && (sameWord(words[1], "graph") || sameWord(words[1], "graph:"))) {
      if (sameWord(words[0], "directed")) shape.directed = true;
      if (sameWord(words[0], "undirected")) shape.directed = false;
    }
  }

 private:
  void readTagged(const Fields& words, ListShape& shape) {
    const bool isNumbers = std::all_of(words.begin(), words.end(), isInteger);
    if (tagged_ && isNumbers && words.size() == 3 && shape.twoModes) {
      shape.firstMode = static_cast<std::uint64_t>(LineCursor(words[1]).readInteger().value_or(0));
      shape.secondMode = static_cast<std::uint64_t>(LineCursor(words[2]).readInteger().value_or(0));
    }
    if (tagged_ || words.size() < 2) return;
    const bool sym = words[0] == "sym";
    const bool asym = words[0] == "asym";
    const bool bip = words[0] == "bip";
    if (!sym && !asym && !bip) return;
    tagged_ = true;
    shape.directed = asym;
    shape.twoModes = bip;
  }

  bool tagged_ = false;
};

/// Whether the first line names the columns: it has the usual words, or its ends or its third
/// column are no numbers where those of the second line are.
bool isHeader(const Fields& first, const Fields& second) {
  if (columnOf(first, kSourceWords) != ListShape::kNone &&
      columnOf(first, kTargetWords) != ListShape::kNone) {
    return true;
  }
  if (first.size() < 2 || second.size() < 2) return false;
  const auto changes = [&](std::size_t column) {
    return column < first.size() && column < second.size() && !wholeNumber(first[column]) &&
           wholeNumber(second[column]);
  };
  // Names of columns are no numbers.
  const bool hasNumbers = wholeNumber(first[0]) || wholeNumber(first[1]);
  return (changes(0) && changes(1)) || (!hasNumbers && changes(2));
}

void takeHeader(const Fields& fields, std::uint64_t line, ListShape& shape) {
  shape.headerLine = line;
  shape.header.assign(fields.begin(), fields.end());
  const std::size_t source = columnOf(fields, kSourceWords);
  const std::size_t target = columnOf(fields, kTargetWords);
  if (source != ListShape::kNone && target != ListShape::kNone) {
    shape.source = source;
    shape.target = target;
  }
  shape.weight = columnOf(fields, kWeightWords);
  const auto type = std::find_if(fields.begin(), fields.end(),
                                 [](std::string_view field) { return sameWord(field, "type"); });
  if (type != fields.end()) shape.type = static_cast<std::size_t>(type - fields.begin());
}

/// What programs export of vertices beside a table of edges has a column of ids first, and then
/// what belongs to each.
bool isVertexTable(const Fields& first, const ListShape& shape) {
  constexpr std::array<std::string_view, 3> kBesideIds{"label", "name", "weight"};
  const bool hasEnds = columnOf(first, kSourceWords) != ListShape::kNone &&
                       columnOf(first, kTargetWords) != ListShape::kNone;
  return shape.separator != ' ' && !hasEnds && first.size() > 1 && sameWord(first[0], "id") &&
         isOneOf(first[1], kBesideIds);
}

}  // namespace

bool isListComment(std::string_view line) {
  const std::string_view text = withoutBlanks(line);
  return text.empty() || text.front() == '#' || text.front() == '%' || text.substr(0, 2) == "//";
}

std::optional<ListShape> shapeOfList(TextInput& text) {
  ListShape shape;
  CommentReader comments;
  LineReader lines(text);
  do {
    if (!lines.next()) return std::nullopt;
    const std::string_view line = withoutBlanks(lines.line());
    if (line.find_first_not_of("#%/ \t") != line.npos && isListComment(line)) {
      comments.read(line, shape);
    }
  } while (isListComment(lines.line()));
  shape.separator = separatorOf(lines.line());
  ListRows rows(text, shape.separator);
  rows.next();
  const Fields first = rows.fields();
  const std::uint64_t firstLine = rows.number();
  const Fields second = rows.next() ? rows.fields() : Fields();
  if (first.size() < 2 && second.size() < 2) return std::nullopt;
  if (isHeader(first, second)) {
    takeHeader(first, firstLine, shape);
    shape.isHeaderGuessed = columnOf(first, kSourceWords) == ListShape::kNone ||
                            columnOf(first, kTargetWords) == ListShape::kNone;
  } else if (first.size() > 2 && wholeNumber(first[2])) {
    shape.weight = 2;
  }
  shape.isVertexTable = isVertexTable(first, shape);
  if (shape.isVertexTable) shape.headerLine = firstLine;
  return shape;
}

}  // namespace veq::internal
