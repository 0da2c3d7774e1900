#include "veq/formats/internal/format_recognition.hpp"

#include <array>
#include <string>

#include "veq/formats/internal/lines.hpp"
#include "veq/formats/internal/list_shape.hpp"
#include "veq/formats/internal/pajek_section_names.hpp"

namespace veq::internal {
namespace {

bool beginsWith(std::string_view text, std::string_view beginning) {
  return sameWord(text.substr(0, beginning.size()), beginning);
}

/// Whether "graph [" stands in a line behind something else.
bool opensGraph(std::string_view line) {
  for (std::size_t at = line.find("graph"); at != line.npos; at = line.find("graph", at + 1)) {
    if (at != 0 && isBlank(line[at - 1]) &&
        withoutBlanks(line.substr(at + 5)).substr(0, 1) == "[") {
      return true;
    }
  }
  return false;
}

/// GML begins with keys and their values, of which one is "graph" with a list.
bool isGml(LineReader lines) {
  bool graph = false;
  while (lines.next()) {
    const std::string_view line = withoutBlanks(lines.line());
    if (line.empty() || line.front() == '#') continue;
    if (graph) return line.front() == '[';
    if (beginsWith(line, "graph")) {
      const std::string_view rest = withoutBlanks(line.substr(5));
      if (!rest.empty()) return rest.front() == '[';
      graph = true;
      continue;
    }
    if (!beginsWith(line, "creator") && !beginsWith(line, "version") &&
        !beginsWith(line, "comment")) {
      return false;
    }
    if (opensGraph(line)) return true;
  }
  return false;
}

/// Whether sections of Pajek begin somewhere in the first lines, whatever stands before them.
bool hasPajekSections(LineReader lines) {
  constexpr std::uint64_t kMostLines = 1000;
  while (lines.number() < kMostLines && lines.position() < ByteStream::kPiece && lines.next()) {
    LineCursor cursor = lines.cursor();
    cursor.skipBlanks();
    if (!cursor.match('*')) continue;
    const std::string_view word = cursor.takeWord();
    if (pajekSectionOf(word.substr(0, word.find(':'))) != PajekSection::kLeftOut) return true;
  }
  return false;
}

/// What the first line says that is neither empty nor a comment, and comments that are headers.
std::optional<FileFormat> formatOfLines(LineReader lines) {
  while (lines.next()) {
    const std::string_view line = withoutBlanks(lines.line());
    if (line.empty()) continue;
    if (beginsWith(line, "%%matrixmarket")) return FileFormat::kMatrixMarket;
    if (beginsWith(line, "#vertices") || beginsWith(line, "#edges")) return FileFormat::kXnet;
    if (line.front() == '*' && line.size() > 1 && isLetter(line[1])) return FileFormat::kPajek;
    if (line.substr(0, 2) != "/*" && !isListComment(line)) break;
  }
  return std::nullopt;
}

}  // namespace

std::string_view compressionOf(std::string_view bytes) {
  constexpr std::array<std::array<std::string_view, 2>, 4> kMarks{{{"gzip", "\x1F\x8B"},
                                                                   {"zstd", "\x28\xB5\x2F\xFD"},
                                                                   {"bzip2", "BZh"},
                                                                   {"xz",
                                                                    "\xFD"
                                                                    "7zXZ"}}};
  for (const auto& [name, mark] : kMarks) {
    if (bytes.substr(0, mark.size()) == mark) return name;
  }
  return "";
}

Error compressedBy(std::string_view how) {
  const bool known = how == "gzip" || how == "zstd";
  return Error(ErrorKind::kUnsupported,
               "compressed by " + std::string(how) +
                   (known ? ", which the library veq::readers reads"
                          : ", which is not read; decompress it first"),
               Place{1, 1});
}

bool isArchive(std::string_view bytes) {
  if (bytes.empty()) return false;
  const unsigned majorType = static_cast<unsigned char>(bytes.front()) >> 5;
  constexpr unsigned kMap = 5;
  return majorType == kMap && bytes.substr(0, 64).find("VEQ.") != bytes.npos;
}

std::optional<FileFormat> formatOfText(TextInput& input, std::string_view name) {
  const std::string_view text = input.piece(0);
  const std::size_t first = text.find_first_not_of(" \t\r\n\v\f");
  if (first == text.npos) return std::nullopt;
  if (text[first] == '<') return FileFormat::kGraphMl;
  if (const std::optional<FileFormat> format = formatOfLines(LineReader(input))) return format;
  if (isGml(LineReader(input))) return FileFormat::kGml;
  if (text.substr(0, ByteStream::kPiece).find('\0') != text.npos) return std::nullopt;
  if (hasPajekSections(LineReader(input))) return FileFormat::kPajek;
  if (shapeOfList(input)) return FileFormat::kList;
  // Of what is no text of any kind a suffix could say only what it is not.
  const std::optional<FileFormat> suffixed = fileFormatOfSuffix(name);
  return suffixed == FileFormat::kArchive || suffixed == FileFormat::kGraphMl ? std::nullopt
                                                                              : suffixed;
}

Error unhandled(FileFormat format, std::string_view done) {
  const std::string_view name = nameOf(format);
  if (name.empty()) return {ErrorKind::kArgument, "there is no such format"};
  return {ErrorKind::kUnsupported, std::string(name).append(" is not ").append(done)};
}

}  // namespace veq::internal
