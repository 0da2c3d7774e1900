#include "veq/formats/walk_reading.hpp"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "veq/base/internal/own_parallelism.hpp"
#include "veq/base/internal/pace.hpp"
#include "veq/formats/internal/archive_pass.hpp"
#include "veq/formats/internal/format_recognition.hpp"
#include "veq/formats/internal/guarded_reading.hpp"
#include "veq/formats/internal/integer_list_pass.hpp"
#include "veq/formats/internal/list_shape.hpp"
#include "veq/formats/internal/matrix_market.hpp"
#include "veq/formats/internal/read_context.hpp"
#include "veq/formats/internal/repeated_bytes.hpp"
#include "veq/formats/internal/text_input.hpp"
#include "veq/formats/internal/walk_file.hpp"
#include "veq/natural/internal/walk_rows.hpp"

namespace veq {
namespace internal {
namespace {

enum NoteCode : unsigned { kSpooled = 40, kWeights };

/// What is decompressed, or not, comes in pieces of so many bytes.
constexpr std::size_t kPiece = std::size_t{1} << 22;

[[noreturn]] void failUnsupported(std::string text) {
  throw Error(ErrorKind::kUnsupported, std::move(text), Place{1, 1});
}

/// What a pass reads, from the first byte on.
struct OpenFile {
  std::optional<ByteStream> raw;
  std::optional<ByteStream> followed;
  std::optional<ByteStream> inside;  // of what is compressed
  std::optional<ByteStream> pieces;
};

class WalkFile {
 public:
  /// Notes go to the context, whose options have no progress.
  WalkFile(const std::string& path, const WalkReadOptions& options, const Decompress& decompress,
           ReadContext& context, std::optional<FileFormat>& format)
      : path_(path),
        options_(options),
        decompress_(decompress),
        context_(context),
        format_(format),
        spoolingPace_(options.reading.progress, 0),
        bytes_(path, options.spoolFolder, spoolingPace_),
        pace_(options.reading.progress, 2 * bytes_.size()),
        mostVertices_(ReadContext(context.options, bytes_.size()).mostVertices()) {}

  Result<WalkNetwork> read() {
    if (const std::string* const folder = bytes_.spoolFolder(); folder && bytes_.size() != 0) {
      context_.note(kSpooled, NoteKind::kTaken, {}, [&] {
        return std::to_string(bytes_.size()) + " bytes of a pipe are spooled to a file without a " +
               "name in " + *folder;
      });
    }
    readHead();
    WalkNetworkOptions how;
    how.announce = options_.announce;
    how.mostBytes = options_.mostMemory;
    how.bytesBeside = options_.bytesBeside;
    std::uint64_t vertices = 0;
    if (format_ == FileFormat::kMatrixMarket) {
      how.vertices = vertices = matrix_.vertices;
      how.directed = matrix_.directed;
    } else if (format_ == FileFormat::kArchive) {
      how.vertices = vertices = archive_.vertices;
      how.directed = archive_.directed;
    } else {
      how.directed = options_.reading.directed.value_or(shape_->directed.value_or(false));
    }
    ReadContext(context_.options, bytes_.size()).requireVertices(vertices, {1, 1});
    return WalkNetwork::fromEdges([this](const EdgeReceiver& receiver) { pass(receiver); }, how);
  }

 private:
  /// Where the passes are so far is told by bytes of the file.
  std::unique_ptr<OpenFile> open(std::uint64_t before) {
    auto file = std::make_unique<OpenFile>();
    file->raw.emplace(bytes_.open());
    const auto counted = [this, before, from = &*file->raw, done = std::uint64_t{0}](
                             char* into, std::size_t capacity) mutable {
      const std::size_t count = from->read(into, capacity);
      done += count;
      pace_.reach(before + done);
      return count;
    };
    // Decompression expects of the bytes what they are.
    file->followed.emplace(counted, bytes_.size());
    file->inside = decompress_(*file->followed);
    ByteStream& plain = file->inside ? *file->inside : *file->followed;
    file->pieces.emplace(
        [&plain](char* into, std::size_t capacity) { return plain.read(into, capacity); }, 0,
        kPiece);
    return file;
  }

  /// Sees the format, and what of it has to be known before the edges.
  void readHead() {
    const auto file = open(0);
    const std::string_view head = file->pieces->head();
    if (head.empty()) throw Error(ErrorKind::kFormat, "the file is empty", Place{1, 1});
    if (!format_ && isArchive(head)) format_ = FileFormat::kArchive;
    if (format_ == FileFormat::kArchive) {
      archive_ = readArchiveHead(*file->pieces);
      context_.note(kWeights, NoteKind::kTaken, {}, [] {
        return std::string("weights and properties, if there are any, are left out");
      });
      return;
    }
    const bool isWhole = head.size() < kPiece;
    if (!isWhole && (head.substr(0, 2) == "\xFF\xFE" || head.substr(0, 2) == "\xFE\xFF")) {
      failUnsupported("a large text in UTF-16 is read as a whole network");
    }
    ByteStream lines(std::string(isWhole ? head : head.substr(0, head.rfind('\n') + 1)));
    ReadContext context(context_.options, lines.expected());
    TextInput text(lines, context);
    if (!isWhole) context.expectMore();
    if (!format_) format_ = formatOfText(text, path_);
    if (!format_) throw Error(ErrorKind::kFormat, "no format that is known", Place{1, 1});
    if (format_ == FileFormat::kMatrixMarket) {
      matrix_ = readMatrixHead(text, context);
      if (matrix_.weighted) noteWeights({1, 1});
    } else if (format_ == FileFormat::kList || format_ == FileFormat::kCsv) {
      readShape(text);
    } else {
      failUnsupported(std::string(nameOf(*format_)) +
                      " is read as a whole network: a walk-only one is read from lists of "
                      "integers, Matrix Market and archives");
    }
  }

  void readShape(TextInput& text) {
    shape_ = shapeOfList(text);
    if (!shape_) failAt({1, 1}, "no list of edges: no line has two columns");
    if (shape_->isVertexTable) failUnsupported("a table of vertices is no list of edges");
    if (shape_->twoModes) failUnsupported("two kinds of vertices are read as a whole network");
    if (shape_->source != 0 || shape_->target != 1) {
      failUnsupported("columns before those of the ends are read as a whole network");
    }
    if (shape_->weight == 2) noteWeights({std::max<std::uint64_t>(shape_->headerLine, 1), 1});
  }

  void noteWeights(Place place) {
    context_.note(kWeights, NoteKind::kLeftOut, place, [] {
      return std::string("the weights are left out, which a walk-only network does not keep");
    });
  }

  void pass(const EdgeReceiver& receiver) {
    const std::uint64_t before = passes_ * bytes_.size();
    // What there is to say is said in the first pass.
    ReadOptions silent = context_.options;
    silent.strict = false;
    silent.mostNotes = 0;
    ReadContext again(silent, bytes_.size());
    ReadContext& context = passes_++ == 0 ? context_ : again;
    const auto file = open(before);
    if (format_ == FileFormat::kArchive) {
      const auto targets = open(before);
      return readArchiveEdges(archive_, *file->pieces, *targets->pieces, receiver);
    }
    TextInput text(*file->pieces, context);
    text.passThrough();
    if (format_ == FileFormat::kMatrixMarket) return readMatrixEdges(text, context, receiver);
    IntegerListPass(*shape_, std::min(mostVertices_, kMostWalkIndices), context)
        .read(text, receiver);
  }

  const std::string& path_;
  const WalkReadOptions& options_;
  const Decompress& decompress_;
  ReadContext& context_;
  std::optional<FileFormat>& format_;
  Pace spoolingPace_;
  RepeatedBytes bytes_;
  Pace pace_;
  std::uint64_t mostVertices_;
  std::optional<ListShape> shape_;
  MatrixHead matrix_{};
  ArchiveHead archive_;
  std::uint64_t passes_ = 0;
};

}  // namespace

WalkReading readWalkFile(const std::string& path, const WalkReadOptions& options,
                         const Decompress& decompress) {
  const OwnParallelism own(options.reading.threads);
  ReadOptions quiet = options.reading;
  quiet.progress = {};
  ReadContext context(quiet, 0);
  std::optional<FileFormat> format = options.reading.format;
  Result<WalkNetwork> network =
      readOrWhyNot([&] { return WalkFile(path, options, decompress, context, format).read(); });
  return {std::move(network), format, context.takeNotes(), context.furtherNotes()};
}

}  // namespace internal

WalkReading readWalkNetwork(const std::string& path, const WalkReadOptions& options) {
  return internal::readWalkFile(
      path, options, [](internal::ByteStream& bytes) -> std::optional<internal::ByteStream> {
        const std::string_view how = internal::compressionOf(bytes.head());
        if (!how.empty()) throw internal::compressedBy(how);
        return std::nullopt;
      });
}

}  // namespace veq
