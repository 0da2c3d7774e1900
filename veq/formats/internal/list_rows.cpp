#include "veq/formats/internal/list_rows.hpp"

#include <algorithm>
#include <utility>

#include "veq/formats/internal/list_shape.hpp"

namespace veq::internal {
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

void FieldSplitter::split(std::string_view line, std::vector<std::string_view>& fields) {
  fields.clear();
  isOpen_ = false;
  hasTail_ = false;
  quoted_.clear();
  LineCursor cursor(line);
  if (separator_ == ' ') {
    for (cursor.skipBlanks(); !cursor.atEnd(); cursor.skipBlanks()) {
      quoted_.push_back(cursor.startsWith('"'));
      if (quoted_.back()) {
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
    quoted_.push_back(!rest.empty() && rest.front() == '"');
    if (quoted_.back()) {
      field = takeQuoted(rest);
      const std::size_t end = std::min(rest.find(separator_), rest.size());
      hasTail_ |= !withoutBlanks(rest.substr(0, end)).empty();
      rest.remove_prefix(end);
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

bool ListRows::next() {
  do {
    if (!lines_.next()) return false;
  } while (isListComment(lines_.line()));
  number_ = lines_.number();
  text_ = lines_.line();
  splitter_.split(text_, fields_);
  if (splitter_.isOpen() && splitter_.separator() != ' ') takeFurtherLines();
  return true;
}

/// Goes on until the quote is closed, or leaves the row as it is.
void ListRows::takeFurtherLines() {
  constexpr std::size_t kMostSearched = std::size_t{1} << 19;
  LineReader ahead = lines_;
  std::string row(ahead.wholeLine());
  FieldSplitter splitter(splitter_.separator());
  std::vector<std::string_view> fields;
  bool open = true;
  while (open && searched_ + row.size() < kMostSearched && ahead.next()) {
    // As if the line began with the quote that is open.
    splitter.split("\"" + std::string(ahead.line()), fields);
    open = splitter.isOpen();
    row += open ? ahead.wholeLine() : ahead.line();
  }
  // A field ends behind the quote that closes it, or else that was none.
  if (open || splitter.hasTail()) {
    searched_ += row.size();
    return;
  }
  joined_.push_back(std::move(row));
  lines_ = ahead;
  text_ = joined_.back();
  splitter_.split(text_, fields_);
}

}  // namespace veq::internal
