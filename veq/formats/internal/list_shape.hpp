/// \file
/// How a list of edges is laid out, as far as its first lines tell.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "veq/formats/internal/lines.hpp"
#include "veq/formats/internal/read_context.hpp"

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

 private:
  std::string_view takeQuoted(std::string_view& rest);

  char separator_;
  bool isOpen_ = false;
  /// Fields whose quotes had to be undone. Their texts never move.
  std::vector<std::unique_ptr<std::string>> undone_;
};

struct ListShape {
  static constexpr std::size_t kNone = SIZE_MAX;

  char separator = ' ';
  /// The line of the header, 0 where there is none.
  std::uint64_t headerLine = 0;
  std::vector<std::string> header;
  std::size_t source = 0;
  std::size_t target = 1;
  std::size_t weight = kNone;
  /// A column of the words "Directed" and "Undirected".
  std::size_t type = kNone;
  /// What the list says of itself, if anything.
  std::optional<bool> directed;
  /// Ends of two kinds, each counted from 1 on its own; the sizes where they are told.
  bool twoModes = false;
  std::uint64_t firstMode = 0;
  std::uint64_t secondMode = 0;
};

/// Whether the line holds nothing, or nothing but a comment: #, % or // at its beginning.
[[nodiscard]] bool isListComment(std::string_view line);

/// Nothing where no line holds two fields.
[[nodiscard]] std::optional<ListShape> shapeOfList(LineReader lines);

}  // namespace veq::internal
