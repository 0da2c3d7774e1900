#pragma once

#include <cstddef>
#include <cstdint>
#include <pugixml.hpp>
#include <string>

#include "veq/base/internal/byte_stream.hpp"
#include "veq/formats/internal/read_context.hpp"

namespace veq::readers {

/// The error about a text of other elements.
inline constexpr const char* kNoGraphMl = "XML, but no GraphML";

/// A GraphML file as a row of small documents, so that there never is a tree of the whole file. The
/// first one is its beginning; each further one has, inside elements <graphml> and <graph> of its
/// own, some of the elements that follow each other in the file's graph. Where a file is of another
/// make the first document is all of it.
class XmlPieces {
 public:
  /// Its notes are of the given code. Both must outlive this.
  XmlPieces(internal::ByteStream& bytes, internal::ReadContext& context, unsigned noteCode);

  /// The next document's element, which lives until the next call; none behind the last. Throws
  /// Error where the text is no XML.
  [[nodiscard]] pugi::xml_node next();
  /// Whether the document is not the first one, so that its graph is the one that went before.
  [[nodiscard]] bool goesOn() const { return number_ > 1; }
  /// Where in the file something stands that the parser has left in its place, as it does with
  /// names and with the beginnings of texts.
  [[nodiscard]] Place placeOf(const char* at) const;
  /// How much of the file stands before the document.
  [[nodiscard]] std::uint64_t position() const { return position_; }

 private:
  enum class Verdict { kGood, kCut, kGraphEnds };

  void readMore();
  void toUtf8(std::size_t from);
  void toUtf8IfItIsNot(std::size_t size);
  [[nodiscard]] std::size_t placeOfLastElement() const;
  pugi::xml_node beginning();
  pugi::xml_node all(bool opened);
  pugi::xml_node made(std::size_t size);
  pugi::xml_parse_result parse(std::size_t size, bool opened, bool closed);
  [[nodiscard]] Verdict verdictOf(const pugi::xml_parse_result& result, std::size_t size) const;
  [[noreturn]] void fail(const pugi::xml_parse_result& result) const;
  [[nodiscard]] Place placeAt(std::size_t offset) const;
  void passReturns(std::string_view text) const;

  internal::ByteStream& bytes_;
  internal::ReadContext& context_;
  unsigned noteCode_;
  bool ended_ = false;
  bool isLatin1_ = false;
  /// What has been read from the current document on, in UTF-8, and the place where that begins.
  std::string ahead_;
  Place place_{1, 1};
  std::uint64_t position_ = 0;
  /// The last place that was looked for, from which the next one is.
  mutable std::size_t soughtOffset_ = 0;
  mutable Place sought_{1, 1};
  /// How much of it the current document has.
  std::size_t size_ = 0;
  std::uint64_t number_ = 0;
  bool isLast_ = false;
  /// What the parser works in, the size of what was put before the document, and what it makes.
  std::string text_;
  std::size_t prefix_ = 0;
  pugi::xml_document document_;
};

/// The name of an element without its namespace.
[[nodiscard]] inline std::string_view localName(const pugi::xml_node& node) {
  const std::string_view name = node.name();
  const std::size_t colon = name.find(':');
  return colon == name.npos ? name : name.substr(colon + 1);
}

}  // namespace veq::readers
