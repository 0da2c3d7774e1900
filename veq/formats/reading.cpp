#include "veq/formats/reading.hpp"

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

#include "veq/base/internal/byte_stream.hpp"
#include "veq/base/internal/own_parallelism.hpp"
#include "veq/formats/internal/archive_keys.hpp"
#include "veq/formats/internal/format_recognition.hpp"
#include "veq/formats/internal/gml.hpp"
#include "veq/formats/internal/guarded_reading.hpp"
#include "veq/formats/internal/lines.hpp"
#include "veq/formats/internal/list_reader.hpp"
#include "veq/formats/internal/matrix_market.hpp"
#include "veq/formats/internal/network_archive.hpp"
#include "veq/formats/internal/pajek_sections.hpp"
#include "veq/formats/internal/read_context.hpp"
#include "veq/formats/internal/text_columns.hpp"
#include "veq/formats/internal/text_input.hpp"
#include "veq/formats/internal/xnet.hpp"
#include "veq/formats/keyed_archiver.hpp"
#include "veq/network/internal/network_core.hpp"
#include "veq/network/internal/property_columns.hpp"

namespace veq {
namespace {

using internal::ByteStream;
using internal::NetworkDraft;
using internal::ReadContext;
using internal::TextInput;

/// The place of what is wrong with a file as a whole.
constexpr Place kBeginning{1, 1};

/// The number of weights must be that of what the section is of.
void requireAsMany(const std::optional<internal::Weights>& weights, std::uint64_t count,
                   std::string_view section, TextInput& text) {
  if (!weights || weights->size() == count) return;
  Place last = kBeginning;
  internal::LineReader lines(text);
  while (lines.next()) {
    const std::string_view line = lines.line();
    if (line.substr(0, 1) == "#" && internal::sameWord(line.substr(1, section.size()), section)) {
      last = lines.place();
    }
  }
  internal::failAt(last, std::to_string(weights->size()) + " weights for " + std::to_string(count) +
                             " " + std::string(section));
}

/// Whether a header may begin somewhere in the line, which to xnet may be several.
bool hasXnetHeader(std::string_view line) {
  for (std::size_t at = line.find('#'); at < line.size(); at = line.find('#', at + 1)) {
    const std::string_view word = line.substr(at + 1, 1);
    if (internal::sameWord(word, "v") || internal::sameWord(word, "e")) return true;
  }
  return false;
}

/// A text without any would be one vertex without edges.
void requireXnetHeader(TextInput& text) {
  internal::LineReader lines(text);
  while (lines.next()) {
    if (hasXnetHeader(lines.line())) return;
  }
  internal::failAt(kBeginning, "no header of xnet, such as #vertices or #edges");
}

NetworkDraft readXnetText(TextInput& text, ReadContext& context) {
  requireXnetHeader(text);
  std::optional<Place> stopped;
  std::optional<NetworkDraft> draft =
      internal::readXnet(text, context.team, &stopped, &context.pace);
  if (stopped) internal::failAt(*stopped, "no number of vertices, or an empty name or key");
  if (!draft || draft->vertexCount > context.mostVertices()) {
    const internal::XnetNumber cause = internal::causeOfVertices(text);
    if (!draft) {
      internal::failAt(cause.place, (cause.isEnd ? "an index that cannot be: "
                                                 : "a number of vertices that cannot be: ") +
                                        internal::shown(cause.text));
    }
    const std::string number(cause.text);
    context.requireVertices(draft->vertexCount, cause.place,
                            cause.isEnd ? "an index of " + number : number + " vertices");
  }
  requireAsMany(draft->verticesWeights, draft->vertexCount, "vertices", text);
  requireAsMany(draft->edgesWeights, draft->from.all().size(), "edges", text);
  return std::move(*draft);
}

struct TextReader {
  FileFormat format;
  NetworkDraft (*read)(TextInput& text, ReadContext& context);
};
constexpr std::array<TextReader, 6> kTextReaders{
    {{FileFormat::kXnet, readXnetText},
     {FileFormat::kPajek, internal::readPajekSections},
     {FileFormat::kList, internal::readList},
     {FileFormat::kCsv, internal::readList},
     {FileFormat::kMatrixMarket, internal::readMatrixMarket},
     {FileFormat::kGml, internal::readGml}}};

/// Where a text first has this, as a key in its header or its section.
Place placeOf(std::string_view word, TextInput& text) {
  internal::LineReader lines(text);
  while (lines.next()) {
    const std::size_t at = lines.line().find(word);
    if (at != std::string_view::npos) return {lines.number(), at + 1};
  }
  return {};
}

void noteReservedKeys(const NetworkDraft& draft, ReadContext& context, TextInput& text) {
  for (const PropertyTable* table : {&draft.properties.vertices, &draft.properties.edges}) {
    for (const auto& [key, column] : *table) {
      if (internal::isReservedKey(key)) internal::noteReserved(key, placeOf(key, text), context);
    }
  }
}

Result<Network> networkOf(NetworkDraft draft, ReadContext& context) {
  draft.pace = &context.pace;
  const std::uint64_t vertices = draft.vertexCount;
  const std::uint64_t edges = draft.from.all().size();
  Owned<VEQNetwork> network =
      internal::CoreAccess::make([&] { return std::optional<NetworkDraft>(std::move(draft)); });
  Shared<VEQNetwork> shared = internal::sharedOrNull(std::move(network));
  if (!shared) {
    return Error(ErrorKind::kMemory, "not enough memory for " + std::to_string(vertices) +
                                         " vertices and " + std::to_string(edges) + " edges");
  }
  return Network(std::move(shared));
}

Result<Network> readArchive(std::string bytes, ReadContext& context) {
  internal::ArchivedEnds ends;
  std::optional<NetworkDraft> draft;
  context.pace.reach(0);
  try {
    VEQKeyedUnarchiver archive(bytes);
    draft = internal::draftOfArchive(archive, ends);
    // In an archive of the published kind the ends say how many there are.
    context.requireVertices(draft->vertexCount,
                            internal::placeInArchive(bytes, internal::hasVersion(archive)
                                                                ? internal::archive2::kVertices
                                                                : internal::archive1::kFromList));
  } catch (const internal::ArchiveError& error) {
    return Error(error.kind(), error.text(), internal::placeInArchive(bytes, error.key()));
  }
  // The bytes go before the network comes.
  context.pace.reach(bytes.size());
  std::string().swap(bytes);
  return networkOf(std::move(*draft), context);
}

/// Only the suffix tells such a file from a list.
bool isLgl(std::string_view name) {
  return name.size() > 4 && internal::sameWord(name.substr(name.size() - 4), ".lgl");
}

Result<Network> readAny(ByteStream& bytes, std::string_view name, ReadContext& context,
                        std::optional<FileFormat>& format) {
  const std::string_view head = bytes.head();
  if (const std::string_view how = internal::compressionOf(head); !how.empty()) {
    return internal::compressedBy(how);
  }
  if (!format && internal::isArchive(head)) format = FileFormat::kArchive;
  if (format == FileFormat::kArchive) {
    std::string all = bytes.takeRest();
    context.setBytes(all.size());
    return readArchive(std::move(all), context);
  }
  if (head.empty()) return Error(ErrorKind::kFormat, "the file is empty", kBeginning);
  if (!format && isLgl(name)) {
    return Error(
        ErrorKind::kUnsupported,
        "LGL, which has the one end of its edges in lines that other lists have as comments, is "
        "not read; NCOL holds the same",
        kBeginning);
  }
  // The text goes before the network comes.
  std::optional<TextInput> text(std::in_place, bytes, context);
  if (!format) format = internal::formatOfText(*text, name);
  if (!format) return Error(ErrorKind::kFormat, "no format that is known", kBeginning);
  for (const TextReader& reader : kTextReaders) {
    if (reader.format != *format) continue;
    NetworkDraft draft = reader.read(*text, context);
    noteReservedKeys(draft, context, *text);
    text.reset();
    return networkOf(std::move(draft), context);
  }
  if (*format == FileFormat::kGraphMl) {
    return Error(ErrorKind::kUnsupported, "graphml is read by the library veq::readers",
                 kBeginning);
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
  const OwnParallelism own(options.threads);
  ReadContext context(options, bytes);
  std::optional<FileFormat> format = options.format;
  Result<Network> result = readOrWhyNot([&] { return read(context, format); });
  return {std::move(result), format, context.takeNotes(), context.furtherNotes(),
          std::move(context.title)};
}

Reading readStream(ByteStream& bytes, const ReadOptions& options, std::string_view name) {
  try {
    return guardedReading(options, bytes.expected(),
                          [&](ReadContext& context, std::optional<FileFormat>& format) {
                            return readAny(bytes, name, context, format);
                          });
  } catch (NotUtf8& late) {
    return readNetworkText(std::move(late.bytes), options, name);
  }
}

}  // namespace internal

Reading readNetworkText(std::string bytes, const ReadOptions& options, std::string_view name) {
  ByteStream stream(std::move(bytes));
  return internal::readStream(stream, options, name);
}

Reading readNetwork(const std::string& path, const ReadOptions& options) {
  Result<ByteStream> bytes = internal::openedInput(path);
  if (!bytes) return {bytes.error(), {}, {}, 0, {}};
  return internal::readStream(bytes.value(), options, path);
}

}  // namespace veq
