#include "veq/readers/internal/xml_pieces.hpp"

#include <algorithm>
#include <array>
#include <new>
#include <string_view>
#include <utility>

#include "veq/base/encodings.hpp"
#include "veq/formats/internal/text_input.hpp"

namespace veq::readers {
namespace {

constexpr std::string_view kOpened = "<graphml><graph>";
constexpr std::string_view kClosed = "</graph></graphml>";
constexpr std::string_view kNode = "<node";
constexpr std::string_view kEdge = "<edge";
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

bool saysLatin1(std::string_view text) {
  const std::string_view declaration = text.substr(0, text.find("?>"));
  return declaration.find("ISO-8859-1") != declaration.npos ||
         declaration.find("iso-8859-1") != declaration.npos;
}

bool isUtf16(std::string_view start) {
  return start.find('\0') != start.npos || start.substr(0, 2) == "\xFF\xFE" ||
         start.substr(0, 2) == "\xFE\xFF";
}

std::string utf8FromUtf16(std::string bytes, internal::ReadContext& context) {
  // The zeros of the first character stand for a mark that is not there.
  if (bytes.size() > 1 && bytes[0] == '\0') bytes.insert(0, "\xFE\xFF");
  if (bytes.size() > 1 && bytes[1] == '\0') bytes.insert(0, "\xFF\xFE");
  return internal::decoded(std::move(bytes), context);
}

/// Where the first element begins, behind what may stand before it. The end where it has not come,
/// and where entities are declared, which may hold elements themselves.
std::size_t placeOfRoot(std::string_view text) {
  struct Other {
    std::string_view begin;
    std::string_view end;
  };
  constexpr std::array<Other, 3> kOthers{{{"<?", "?>"}, {"<!--", "-->"}, {"<!", ">"}}};
  std::size_t at = text.find('<');
  while (at < text.size()) {
    const auto other = std::find_if(kOthers.begin(), kOthers.end(), [&](const Other& each) {
      return text.substr(at, each.begin.size()) == each.begin;
    });
    if (other == kOthers.end()) return at;
    const std::size_t end = text.find(other->end, at);
    const bool declares = other->end == ">" && text.substr(at, end - at).find('[') != text.npos;
    if (end == text.npos || declares) break;
    at = text.find('<', end);
  }
  return text.size();
}

/// Whether the first element is there and is none of GraphML, whatever follows.
bool beginsOtherwise(std::string_view text) {
  constexpr std::string_view kBehindNames = " \t\r\n/>";
  const std::size_t root = placeOfRoot(text);
  const std::size_t end = text.find_first_of(kBehindNames, root);
  if (end == text.npos) return false;
  const std::string_view name = text.substr(root + 1, end - root - 1);
  return name.substr(name.find(':') + 1) != "graphml";
}

/// Whether there is one graph and nothing behind it.
bool endsWithItsGraph(const pugi::xml_node& root) {
  if (localName(root) != "graphml" || localName(root.last_child()) != "graph") return false;
  for (const pugi::xml_node& child : root.children()) {
    if (localName(child) == "graph") return !child.next_sibling();
  }
  return false;
}

}  // namespace

XmlPieces::XmlPieces(internal::ByteStream& bytes, internal::ReadContext& context, unsigned noteCode)
    : bytes_(bytes), context_(context), noteCode_(noteCode) {
  if (isUtf16(bytes.head().substr(0, 4))) {
    ahead_ = utf8FromUtf16(bytes.takeRest(), context);
    ended_ = true;
    return;
  }
  readMore();
  if (ahead_.compare(0, kUtf8Mark.size(), kUtf8Mark) == 0) {
    ahead_.erase(0, kUtf8Mark.size());
  } else if (saysLatin1(ahead_)) {
    isLatin1_ = true;
    toUtf8(0);
  }
}

void XmlPieces::readMore() {
  // Twice as much each time, so that what must be parsed again does not add up.
  const std::size_t filled = ahead_.size();
  const std::size_t wanted = std::max(filled + bytes_.pieceSize(), 2 * filled);
  ahead_.resize(wanted);
  std::size_t read = filled;
  while (read < wanted && !ended_) {
    const std::size_t count = bytes_.read(ahead_.data() + read, wanted - read);
    read += count;
    ended_ = count == 0;
  }
  ahead_.resize(read);
  if (isLatin1_) toUtf8(filled);
}

/// Each byte from there on is a character of ISO-8859-1.
void XmlPieces::toUtf8(std::size_t from) {
  std::string utf8;
  for (const char byte : std::string_view(ahead_).substr(from)) {
    const auto code = static_cast<unsigned char>(byte);
    if (code < 0x80) {
      utf8 += byte;
    } else {
      utf8 += static_cast<char>(0xC0 | code >> 6);
      utf8 += static_cast<char>(0x80 | (code & 0x3F));
    }
  }
  ahead_.replace(from, ahead_.npos, utf8);
}

/// The parser takes everything for UTF-8, whether it is that or not.
void XmlPieces::toUtf8IfItIsNot(std::size_t size) {
  if (isLatin1_ || isUtf8(std::string_view(ahead_).substr(0, size))) return;
  const auto first = std::find_if(ahead_.begin(), ahead_.end(),
                                  [](char byte) { return static_cast<unsigned char>(byte) > 127; });
  context_.note(
      noteCode_, NoteKind::kTaken, placeAt(static_cast<std::size_t>(first - ahead_.begin())),
      [] { return std::string("not UTF-8: from here on the text is taken for ISO-8859-1"); });
  isLatin1_ = true;
  toUtf8(0);
}

pugi::xml_node XmlPieces::next() {
  if (isLast_) return {};
  place_ = placeAt(size_);
  sought_ = place_;
  soughtOffset_ = 0;
  position_ += size_;
  ahead_.erase(0, size_);
  size_ = 0;
  if (++number_ == 1) return beginning();
  while (!ended_) {
    if (ahead_.size() < bytes_.pieceSize()) {
      readMore();
      continue;
    }
    toUtf8IfItIsNot(placeOfLastElement());
    const std::size_t size = placeOfLastElement();
    const Verdict verdict = size == 0 ? Verdict::kCut : verdictOf(parse(size, true, true), size);
    if (verdict == Verdict::kGood) return made(size);
    if (verdict == Verdict::kGraphEnds) break;
    readMore();
  }
  return all(true);
}

/// Where a node or an edge seems to begin, behind others; 0 where that is nowhere. It may stand in
/// a comment.
std::size_t XmlPieces::placeOfLastElement() const {
  const std::size_t node = ahead_.rfind(kNode);
  const std::size_t edge = ahead_.rfind(kEdge);
  if (node == ahead_.npos || edge == ahead_.npos) return node == edge ? 0 : std::min(node, edge);
  return std::max(node, edge);
}

pugi::xml_node XmlPieces::beginning() {
  for (;;) {
    const std::size_t size = std::min(ahead_.find(kNode), ahead_.find(kEdge));
    if (size != ahead_.npos) {
      toUtf8IfItIsNot(size);
      const std::size_t inUtf8 = std::min(ahead_.find(kNode), ahead_.find(kEdge));
      const bool isGood = parse(inUtf8, false, true);
      return isGood && endsWithItsGraph(document_.document_element()) ? made(inUtf8) : all(false);
    }
    if (ended_) return all(false);
    // Else the whole text would be read for the sake of an error.
    if (beginsOtherwise(ahead_)) internal::failAt(placeAt(placeOfRoot(ahead_)), kNoGraphMl);
    readMore();
  }
}

/// All that is left, as the last document.
pugi::xml_node XmlPieces::all(bool opened) {
  while (!ended_) readMore();
  toUtf8IfItIsNot(ahead_.size());
  isLast_ = true;
  const pugi::xml_parse_result result = parse(ahead_.size(), opened, false);
  if (!result) fail(result);
  return made(ahead_.size());
}

pugi::xml_node XmlPieces::made(std::size_t size) {
  size_ = size;
  return document_.document_element();
}

pugi::xml_parse_result XmlPieces::parse(std::size_t size, bool opened, bool closed) {
  // Which XML forbids, and where the parser would end.
  const std::size_t zero = std::string_view(ahead_).substr(0, size).find('\0');
  if (zero != ahead_.npos) {
    internal::failAt(placeAt(zero), "XML: a character with the code 0");
  }
  text_.assign(opened ? kOpened : "");
  prefix_ = text_.size();
  text_.append(ahead_, 0, size);
  if (closed) text_ += kClosed;
  const pugi::xml_parse_result result = document_.load_buffer_inplace(
      text_.data(), text_.size(), pugi::parse_default | pugi::parse_ws_pcdata_single,
      pugi::encoding_utf8);
  if (result.status == pugi::status_out_of_memory) throw std::bad_alloc();
  return result;
}

/// Of a piece that was cut out of the middle. Throws what is wrong wherever it had been cut.
XmlPieces::Verdict XmlPieces::verdictOf(const pugi::xml_parse_result& result,
                                        std::size_t size) const {
  // Where the graph ends and another begins, the piece has two.
  if (result) {
    const pugi::xml_node graph = document_.document_element().first_child();
    return graph.next_sibling() ? Verdict::kGraphEnds : Verdict::kGood;
  }
  switch (result.status) {
    case pugi::status_bad_comment:
    case pugi::status_bad_cdata:
    case pugi::status_bad_pi:
    case pugi::status_bad_doctype:
    case pugi::status_bad_attribute:
      return Verdict::kCut;
    case pugi::status_end_element_mismatch: {
      const auto offset = static_cast<std::size_t>(result.offset);
      if (offset >= prefix_ + size) return Verdict::kCut;
      const std::size_t tag = ahead_.rfind("</", offset - prefix_);
      if (tag != ahead_.npos && ahead_.compare(tag, 7, "</graph") == 0) return Verdict::kGraphEnds;
      fail(result);
    }
    default:
      fail(result);
  }
}

void XmlPieces::fail(const pugi::xml_parse_result& result) const {
  const auto offset = static_cast<std::size_t>(std::max<std::ptrdiff_t>(result.offset, 0));
  internal::failAt(placeAt(offset - std::min(offset, prefix_)),
                   std::string("XML: ") + result.description());
}

Place XmlPieces::placeOf(const char* at) const {
  const auto offset = at - text_.data() - static_cast<std::ptrdiff_t>(prefix_);
  return offset < 0 ? place_ : placeAt(static_cast<std::size_t>(offset));
}

/// Goes on over a text up to the place that is sought, in which lines may end with CR alone.
void XmlPieces::passReturns(std::string_view text) const {
  for (const char& byte : text) {
    const bool isPair = byte == '\r' && (&byte)[1] == '\n';
    ++sought_.column;
    if (byte != '\n' && (byte != '\r' || isPair)) continue;
    ++sought_.line;
    sought_.column = 1;
  }
}

Place XmlPieces::placeAt(std::size_t offset) const {
  if (offset < soughtOffset_) {
    soughtOffset_ = 0;
    sought_ = place_;
  }
  const std::string_view between =
      std::string_view(ahead_).substr(soughtOffset_, offset - soughtOffset_);
  soughtOffset_ += between.size();
  if (between.find('\r') != between.npos) {
    passReturns(between);
    return sought_;
  }
  const std::size_t newline = between.rfind('\n');
  sought_.line += static_cast<std::uint64_t>(std::count(between.begin(), between.end(), '\n'));
  sought_.column =
      newline == between.npos ? sought_.column + between.size() : between.size() - newline;
  return sought_;
}

}  // namespace veq::readers
