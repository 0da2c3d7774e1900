#include "fuzz/support/readings.hpp"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "fuzz/support/invariants.hpp"
#include "veq/base/internal/encodings.hpp"
#include "veq/formats/internal/guarded_reading.hpp"
#include "veq/formats/writing.hpp"

namespace veq::fuzz {
namespace {

/// Lines end with LF, CR or CR LF; in UTF-16 each of these bytes may be half of something else.
std::uint64_t mostLines(std::string_view bytes) {
  return 1 + static_cast<std::uint64_t>(std::count_if(bytes.begin(), bytes.end(), [](char byte) {
           return byte == '\n' || byte == '\r';
         }));
}

void checkNotes(const Reading& reading, std::uint64_t lines) {
  for (const Note& note : reading.notes()) {
    VEQ_CHECK(!note.text.empty());
    VEQ_CHECK(note.count > 0);
    VEQ_CHECK(note.place.line <= lines);
    VEQ_CHECK(internal::isValidUtf8(note.text));
  }
}

void checkError(const Error& error, std::uint64_t lines) {
  VEQ_CHECK(!error.text().empty());
  VEQ_CHECK(internal::isValidUtf8(error.text()));
  VEQ_CHECK(!error.place() || error.place()->line <= lines);
  VEQ_CHECK(error.kind() == ErrorKind::kFormat || error.kind() == ErrorKind::kUnsupported);
}

/// Strict reading gives what the other gave, unless that had to repair or leave out something.
void checkStrict(const Reading& reading, const Reading& strict) {
  const bool isWhole = std::all_of(reading.notes().begin(), reading.notes().end(),
                                   [](const Note& note) { return note.kind == NoteKind::kTaken; });
  if (reading && isWhole) {
    VEQ_CHECK(strict.hasValue());
    VEQ_CHECK_NO(
        difference(imageOf(*reading.value().published()), imageOf(*strict.value().published())));
  } else {
    VEQ_CHECK(!strict.hasValue());
  }
}

/// Every format takes the network or says why not, and an archive gives all of it back.
void checkWriting(const Network& network) {
  for (const FileFormat format :
       {FileFormat::kXnet, FileFormat::kPajek, FileFormat::kList, FileFormat::kMatrixMarket,
        FileFormat::kGml, FileFormat::kGraphMl, FileFormat::kCsv}) {
    const Result<std::string> text = networkText(network, format);
    if (!text) VEQ_CHECK(text.error().kind() == ErrorKind::kUnsupported);
    if (!text || (format != FileFormat::kGml && format != FileFormat::kMatrixMarket)) continue;
    const Reading back = readNetworkText(text.value());
    VEQ_CHECK(back.hasValue());
    VEQ_CHECK(back.value().countVertices() == network.countVertices());
    VEQ_CHECK(back.value().countEdges() == network.countEdges());
  }
  const Reading back = readNetworkText(networkText(network, FileFormat::kArchive).value());
  VEQ_CHECK(back.hasValue());
  VEQ_CHECK_NO(difference(imageOf(*network.published()), imageOf(*back.value().published())));
}

}  // namespace

void checkReading(std::string_view bytes, const ReadText& read, std::optional<FileFormat> format) {
  ReadOptions options;
  options.format = format;
  options.mostVertices = kManyVertices;
  options.mostBytes = 1 << 16;
  const unsigned choice = bytes.empty() ? 0 : static_cast<unsigned char>(bytes.back());
  options.idsAreIndices = (choice & 1) != 0;
  options.keepWeights = (choice & 2) != 0;
  if ((choice & 4) != 0) options.directed = (choice & 8) != 0;
  // What decompression makes of it has lines of its own.
  const std::uint64_t lines = mostLines(bytes) + (format ? 0 : *options.mostBytes);
  const Reading reading = read(std::string(bytes), options, "");
  checkNotes(reading, lines);
  if (!reading) checkError(reading.error(), lines);
  options.strict = true;
  const Reading strict = read(std::string(bytes), options, "");
  if (!strict) checkError(strict.error(), lines);
  checkStrict(reading, strict);
  if (!reading) return;
  checkNetwork(*reading.value().published());
  VEQ_CHECK(reading.value().countVertices() <= kManyVertices);
  checkWriting(reading.value());
}

void checkPieces(std::string_view bytes, const ReadStream& read, std::optional<FileFormat> format) {
  ReadOptions options;
  options.format = format;
  options.mostVertices = kManyVertices;
  options.mostBytes = 1 << 16;
  // The format is seen in the first piece, which must not be too small for that.
  const std::size_t piece =
      (format ? 1 : 4096) + (bytes.empty() ? 0 : static_cast<unsigned char>(bytes.front()) % 64);
  internal::ByteStream whole{std::string(bytes)};
  std::string_view left = bytes;
  internal::ByteStream pieces(
      [&left](char* into, std::size_t capacity) {
        const std::size_t count = std::min(capacity, left.size());
        std::copy_n(left.begin(), count, into);
        left.remove_prefix(count);
        return count;
      },
      0, piece);
  const Reading expected = read(whole, options, "");
  const Reading found = read(pieces, options, "");
  VEQ_CHECK(expected.format() == found.format());
  // Lines of xnet may end with what is one character in UTF-8 and more in ISO-8859-1.
  if (expected.format() == FileFormat::kXnet && !internal::isValidUtf8(bytes)) return;
  VEQ_CHECK(expected.hasValue() == found.hasValue());
  // What ends before the first byte that is not UTF-8 takes the text for that, and notes nothing.
  if (!internal::isValidUtf8(bytes)) return;
  // An error in the middle of XML is seen before one at its end, or behind it.
  if (!expected) {
    if (expected.format() == FileFormat::kGraphMl) return;
    VEQ_CHECK(expected.error().text() == found.error().text());
    VEQ_CHECK(expected.error().place() == found.error().place());
    return;
  }
  VEQ_CHECK_NO(
      difference(imageOf(*expected.value().published()), imageOf(*found.value().published())));
  VEQ_CHECK(expected.title() == found.title());
  VEQ_CHECK(std::equal(expected.notes().begin(), expected.notes().end(), found.notes().begin(),
                       found.notes().end(), [](const Note& a, const Note& b) {
                         return a.kind == b.kind && a.place == b.place && a.text == b.text &&
                                a.count == b.count;
                       }));
}

void checkReading(std::string_view bytes, std::optional<FileFormat> format) {
  checkReading(
      bytes,
      [](std::string text, const ReadOptions& options, std::string_view name) {
        return readNetworkText(std::move(text), options, name);
      },
      format);
  checkPieces(bytes, internal::readStream, format);
}

}  // namespace veq::fuzz
