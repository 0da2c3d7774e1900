/// \file
/// The rows of a list, and their fields.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "veq/formats/internal/lines.hpp"
#include "veq/formats/internal/text_input.hpp"

namespace veq::internal {

/// Takes the fields of lines one by one.
class FieldSplitter {
 public:
  /// A separator of ' ' stands for runs of blanks and tabs; any other for itself, with blanks
  /// around it that do not count. Fields may be quoted then, a quote inside being doubled.
  explicit FieldSplitter(char separator) : separator_(separator) {}

  [[nodiscard]] char separator() const { return separator_; }
  /// Splits a line; the fields live as long as the line and this.
  void split(std::string_view line, std::vector<std::string_view>& fields);
  /// Whether the last line ended inside a quote.
  [[nodiscard]] bool isOpen() const { return isOpen_; }
  /// Whether a field of the last line stood in quotes.
  [[nodiscard]] bool isQuoted(std::size_t field) const { return quoted_[field]; }
  /// Whether something followed the end of a quoted field, of which it is no part.
  [[nodiscard]] bool hasTail() const { return hasTail_; }

 private:
  std::string_view takeQuoted(std::string_view& rest);

  char separator_;
  bool isOpen_ = false;
  bool hasTail_ = false;
  std::vector<bool> quoted_;
  /// Fields whose quotes had to be undone. Their texts never move.
  std::vector<std::unique_ptr<std::string>> undone_;
};

/// A row is a line that is neither blank nor a comment, with those behind it where a field in
/// quotes goes on there. Fields live as long as this and the text.
class ListRows {
 public:
  ListRows(TextInput& text, char separator) : lines_(text), splitter_(separator) {}

  /// Goes to the next row; false behind the last one.
  bool next();
  [[nodiscard]] const std::vector<std::string_view>& fields() const { return fields_; }
  [[nodiscard]] bool isQuoted(std::size_t field) const { return splitter_.isQuoted(field); }
  /// The row as it stands.
  [[nodiscard]] std::string_view text() const { return text_; }
  /// Whether it ends inside a quote that no later line closes.
  [[nodiscard]] bool isOpen() const { return splitter_.isOpen(); }
  /// Of its first line, from 1.
  [[nodiscard]] std::uint64_t number() const { return number_; }
  [[nodiscard]] Place place() const { return {number_, 1}; }
  /// The place of what may be a piece of the row's only line; otherwise that of the row.
  [[nodiscard]] Place placeOf(std::string_view piece) const {
    return number_ == lines_.number() ? lines_.placeOf(piece) : place();
  }
  /// The bytes up to behind the row.
  [[nodiscard]] std::uint64_t position() const { return lines_.position(); }

 private:
  void takeFurtherLines();

  LineReader lines_;
  FieldSplitter splitter_;
  std::vector<std::string_view> fields_;
  std::string_view text_;
  std::uint64_t number_ = 0;
  /// Rows of several lines. They never move.
  std::deque<std::string> joined_;
  /// How many bytes were looked through for quotes that are not closed.
  std::size_t searched_ = 0;
};

}  // namespace veq::internal
