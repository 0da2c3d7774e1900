#include "veq/formats/internal/list_shape.hpp"

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

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
  Fields words;
  FieldSplitter(' ').split(line, words);
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
    FieldSplitter(' ').split(comment.substr(comment.find_first_not_of("#%/ \t")), words);
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
  if (second.size() < 2) return false;
  const auto changes = [&](std::size_t column) {
    return column < first.size() && column < second.size() && !wholeNumber(first[column]) &&
           wholeNumber(second[column]);
  };
  return (changes(0) && changes(1)) || (first.size() > 2 && changes(2));
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

}  // namespace

std::string_view FieldSplitter::takeQuoted(std::string_view& rest) {
  rest.remove_prefix(1);
  const std::size_t end = rest.find('"');
  const bool isDoubled = end != rest.npos && end + 1 < rest.size() && rest[end + 1] == '"';
  if (!isDoubled) {
    isOpen_ = end == rest.npos;
    const std::string_view field = rest.substr(0, end);
    rest.remove_prefix(isOpen_ ? rest.size() : end + 1);
    return field;
  }
  auto undone = std::make_unique<std::string>();
  for (;;) {
    const std::size_t quote = rest.find('"');
    undone->append(rest.substr(0, quote));
    isOpen_ = quote == rest.npos;
    rest.remove_prefix(isOpen_ ? rest.size() : quote + 1);
    if (rest.empty() || rest.front() != '"') break;
    *undone += '"';
    rest.remove_prefix(1);
  }
  undone_.push_back(std::move(undone));
  return *undone_.back();
}

void FieldSplitter::split(std::string_view line, Fields& fields) {
  fields.clear();
  isOpen_ = false;
  LineCursor cursor(line);
  if (separator_ == ' ') {
    for (cursor.skipBlanks(); !cursor.atEnd(); cursor.skipBlanks()) {
      if (cursor.startsWith('"')) {
        std::string_view rest = cursor.rest();
        const std::string_view field = takeQuoted(rest);
        fields.push_back(field);
        cursor = LineCursor(rest);
      } else {
        fields.push_back(cursor.takeWord());
      }
    }
    return;
  }
  std::string_view rest = line;
  for (;;) {
    // A tab is a blank, but not where it separates.
    while (!rest.empty() && isBlank(rest.front()) && rest.front() != separator_) {
      rest.remove_prefix(1);
    }
    std::string_view field;
    if (!rest.empty() && rest.front() == '"') {
      field = takeQuoted(rest);
      rest.remove_prefix(std::min(rest.find(separator_), rest.size()));
    } else {
      const std::size_t end = std::min(rest.find(separator_), rest.size());
      field = withoutBlanks(rest.substr(0, end));
      rest.remove_prefix(end);
    }
    fields.push_back(field);
    if (rest.empty()) return;
    rest.remove_prefix(1);
  }
}

bool isListComment(std::string_view line) {
  const std::string_view text = withoutBlanks(line);
  return text.empty() || text.front() == '#' || text.front() == '%' || text.substr(0, 2) == "//";
}

std::optional<ListShape> shapeOfList(LineReader lines) {
  ListShape shape;
  CommentReader comments;
  std::string_view first;
  std::string_view second;
  std::uint64_t firstLine = 0;
  while (second.empty() && lines.next()) {
    const std::string_view line = withoutBlanks(lines.line());
    if (line.empty()) continue;
    if (isListComment(line)) {
      if (first.empty() && line.find_first_not_of("#%/ \t") != line.npos) {
        comments.read(line, shape);
      }
    } else if (first.empty()) {
      first = lines.line();
      firstLine = lines.number();
    } else {
      second = lines.line();
    }
  }
  if (first.empty()) return std::nullopt;
  shape.separator = separatorOf(first);
  FieldSplitter splitter(shape.separator);
  Fields fields;
  Fields below;
  splitter.split(first, fields);
  splitter.split(second, below);
  if (fields.size() < 2 && below.size() < 2) return std::nullopt;
  if (isHeader(fields, below)) {
    takeHeader(fields, firstLine, shape);
  } else if (fields.size() > 2 && wholeNumber(fields[2])) {
    shape.weight = 2;
  }
  return shape;
}

}  // namespace veq::internal
