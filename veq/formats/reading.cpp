#include "veq/formats/reading.hpp"

#include <algorithm>
#include <array>
#include <memory>
#include <new>
#include <stdexcept>
#include <utility>

#include "veq/base/files.hpp"
#include "veq/base/internal/encodings.hpp"
#include "veq/formats/internal/format_recognition.hpp"
#include "veq/formats/internal/gml.hpp"
#include "veq/formats/internal/guarded_reading.hpp"
#include "veq/formats/internal/lines.hpp"
#include "veq/formats/internal/list_reader.hpp"
#include "veq/formats/internal/matrix_market.hpp"
#include "veq/formats/internal/network_archive.hpp"
#include "veq/formats/internal/pajek_sections.hpp"
#include "veq/formats/internal/read_context.hpp"
#include "veq/formats/internal/xnet.hpp"
#include "veq/formats/keyed_archiver.hpp"
#include "veq/network/internal/network_core.hpp"
#include "veq/network/internal/property_columns.hpp"

namespace veq {
namespace {

using internal::NetworkDraft;
using internal::ReadContext;

constexpr unsigned kEncodingCode = 60;
constexpr unsigned kReservedCode = 61;

Place placeAt(std::string_view text, std::size_t position) {
  const std::string_view before = text.substr(0, position);
  const std::size_t newline = before.rfind('\n');
  const auto lines = static_cast<std::uint64_t>(std::count(before.begin(), before.end(), '\n'));
  return {lines + 1, newline == before.npos ? position + 1 : position - newline};
}

NetworkDraft readXnetText(std::string_view text, ReadContext& context) {
  std::size_t failedAt = 0;
  std::optional<NetworkDraft> draft = internal::readXnet(text, &failedAt);
  if (!draft) {
    internal::failAt(placeAt(text, failedAt),
                     failedAt == text.size() ? "an index or a number of vertices that cannot be"
                                             : "no number of vertices, or an empty name or key");
  }
  internal::LineReader lines(text);
  while (draft->vertexCount > context.mostVertices() && lines.next()) {
    if (internal::sameWord(lines.line().substr(0, 9), "#vertices")) {
      context.requireVertices(draft->vertexCount, lines.place());
    }
  }
  context.requireVertices(draft->vertexCount, {});
  return std::move(*draft);
}

struct TextReader {
  FileFormat format;
  NetworkDraft (*read)(std::string_view text, ReadContext& context);
};
constexpr std::array<TextReader, 6> kTextReaders{
    {{FileFormat::kXnet, readXnetText},
     {FileFormat::kPajek, internal::readPajekSections},
     {FileFormat::kList, internal::readList},
     {FileFormat::kCsv, internal::readList},
     {FileFormat::kMatrixMarket, internal::readMatrixMarket},
     {FileFormat::kGml, internal::readGml}}};

/// The text in UTF-8, whatever the file has.
std::string decoded(std::string bytes, ReadContext& context) {
  const auto takenForLatin1 = [&](NoteKind kind, const char* why) {
    context.note(kEncodingCode, kind, {1, 1},
                 [&] { return std::string(why) + ": the text is taken for ISO-8859-1"; });
    return internal::utf8FromLatin1(bytes);
  };
  if (internal::isValidUtf8(bytes)) {
    const std::string_view text = internal::withoutByteOrderMark(bytes);
    if (text.size() != bytes.size()) bytes.erase(0, bytes.size() - text.size());
    return bytes;
  }
  // A copy, because a mark that is broken leaves the bytes to be taken otherwise.
  if (std::optional<std::string> text = internal::decodeAutomatically(std::string(bytes))) {
    const bool isUtf16 = bytes.size() >= 2 && (bytes[0] == '\xFF' || bytes[0] == '\xFE');
    return isUtf16 ? std::move(*text) : takenForLatin1(NoteKind::kTaken, "not UTF-8");
  }
  const bool isUtf16 = bytes[0] == '\xFF' || bytes[0] == '\xFE';
  bytes.erase(0, isUtf16 ? 2 : 3);
  return takenForLatin1(NoteKind::kRepaired,
                        "what follows the byte-order mark is not what the mark says");
}

Result<Network> networkOf(NetworkDraft draft, ReadContext& context) {
  for (const PropertyTable* table : {&draft.properties.vertices, &draft.properties.edges}) {
    for (const auto& [key, column] : *table) {
      if (draft.columnsAreReady || !internal::isReservedKey(key)) continue;
      context.note(kReservedCode, NoteKind::kLeftOut, {}, [name = std::string(key)] {
        return "the column \"" + name + "\" is left out, because weights and ends have such names";
      });
    }
  }
  const std::uint64_t vertices = draft.vertexCount;
  const std::uint64_t edges = draft.from.all().size();
  const std::uint64_t vertexWeights =
      draft.verticesWeights ? draft.verticesWeights->size() : vertices;
  const std::uint64_t edgeWeights = draft.edgesWeights ? draft.edgesWeights->size() : edges;
  if (vertexWeights != vertices || edgeWeights != edges) {
    return Error(ErrorKind::kFormat, std::to_string(vertexWeights) + " weights for " +
                                         std::to_string(vertices) + " vertices, " +
                                         std::to_string(edgeWeights) + " for " +
                                         std::to_string(edges) + " edges");
  }
  Owned<VEQNetwork> network =
      internal::CoreAccess::make([&] { return std::optional<NetworkDraft>(std::move(draft)); });
  Shared<VEQNetwork> shared = internal::sharedOrNull(std::move(network));
  if (!shared) {
    return Error(ErrorKind::kMemory, "not enough memory for " + std::to_string(vertices) +
                                         " vertices and " + std::to_string(edges) + " edges");
  }
  return Network(std::move(shared));
}

Result<Network> readArchive(std::string_view bytes, ReadContext& context) {
  VEQKeyedUnarchiver archive(bytes);
  internal::ArchivedEnds ends;
  NetworkDraft draft = internal::draftOfArchive(archive, ends);
  context.requireVertices(draft.vertexCount, {});
  return networkOf(std::move(draft), context);
}

Error compressed(std::string_view how) {
  const bool known = how == "gzip" || how == "zstd";
  return Error(ErrorKind::kUnsupported, "compressed by " + std::string(how) +
                                            (known ? ", which the library veq::readers reads"
                                                   : ", which is not read; decompress it first"));
}

/// Only the suffix tells such a file from a list.
bool isLgl(std::string_view name) {
  return name.size() > 4 && internal::sameWord(name.substr(name.size() - 4), ".lgl");
}

Result<Network> readBytes(std::string bytes, std::string_view name, ReadContext& context,
                          std::optional<FileFormat>& format) {
  if (const std::string_view how = internal::compressionOf(bytes); !how.empty()) {
    return compressed(how);
  }
  if (!format && internal::isArchive(bytes)) format = FileFormat::kArchive;
  if (format == FileFormat::kArchive) return readArchive(bytes, context);
  if (bytes.empty()) return Error(ErrorKind::kFormat, "the file is empty");
  if (!format && isLgl(name)) {
    return Error(
        ErrorKind::kUnsupported,
        "LGL, which has the one end of its edges in lines that other lists have as comments, is "
        "not read; NCOL holds the same");
  }
  const std::string text = decoded(std::move(bytes), context);
  if (!format) format = internal::formatOfText(text, name);
  if (!format) return Error(ErrorKind::kFormat, "no format that is known");
  for (const TextReader& reader : kTextReaders) {
    if (reader.format == *format) return networkOf(reader.read(text, context), context);
  }
  if (*format == FileFormat::kGraphMl) {
    return Error(ErrorKind::kUnsupported, "graphml is read by the library veq::readers");
  }
  return internal::unhandled(*format, "read");
}

}  // namespace

namespace internal {

Result<Network> networkOfDraft(NetworkDraft draft, ReadContext& context) {
  return networkOf(std::move(draft), context);
}

Reading guardedReading(
    const ReadOptions& options, std::uint64_t bytes,
    const std::function<Result<Network>(ReadContext&, std::optional<FileFormat>&)>& read) {
  ReadContext context(options, bytes);
  std::optional<FileFormat> format = options.format;
  Result<Network> result = [&]() -> Result<Network> {
    try {
      return read(context, format);
    } catch (const Error& error) {
      return error;
    } catch (const Stopped&) {
      return Error(ErrorKind::kStopped, "stopped");
    } catch (const std::bad_alloc&) {
      return Error(ErrorKind::kMemory, "not enough memory");
    } catch (const std::length_error&) {
      return Error(ErrorKind::kMemory, "not enough memory");
    }
  }();
  return {std::move(result), format, context.takeNotes(), context.furtherNotes(),
          std::move(context.title)};
}

}  // namespace internal

Reading readNetworkText(std::string bytes, const ReadOptions& options, std::string_view name) {
  return internal::guardedReading(options, bytes.size(),
                                  [&](ReadContext& context, std::optional<FileFormat>& format) {
                                    return readBytes(std::move(bytes), name, context, format);
                                  });
}

Reading readNetwork(const std::string& path, const ReadOptions& options) {
  Result<std::string> bytes = readFile(path);
  if (!bytes) return {bytes.error(), {}, {}, 0, {}};
  return readNetworkText(std::move(bytes).value(), options, path);
}

}  // namespace veq
