#include "veq/formats/writing.hpp"

#include <array>
#include <new>
#include <stdexcept>
#include <utility>

#include "veq/base/files.hpp"
#include "veq/base/internal/encodings.hpp"
#include "veq/base/internal/own_parallelism.hpp"
#include "veq/formats/internal/edge_list.hpp"
#include "veq/formats/internal/format_recognition.hpp"
#include "veq/formats/internal/network_archive.hpp"
#include "veq/formats/internal/pajek.hpp"
#include "veq/formats/internal/writers.hpp"
#include "veq/formats/internal/xnet.hpp"
#include "veq/formats/keyed_archiver.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq {
namespace {

using internal::CoreAccess;
using internal::NetworkCore;
using internal::TextOutput;

// All of the vertices stand before the edges.
void giveAll(const NetworkCore& core, internal::NetworkText&& text, TextOutput& out) {
  const bool all = text.giveTo([&](std::string_view piece) {
    out.text += piece;
    out.endRows(core.store.vertexCount() + text.edgesGiven());
    return true;
  });
  static_cast<void>(all);
  out.finish();
}

void writeXnetText(const NetworkCore& core, TextOutput& out) {
  internal::NetworkText text = internal::writeXnet(core);
  if (!internal::isValidUtf8(text.beforeEdges) || !internal::isValidUtf8(text.behindEdges)) {
    throw Error(ErrorKind::kUnsupported, "xnet cannot hold a text that is not UTF-8");
  }
  giveAll(core, std::move(text), out);
}

void writePajekText(const NetworkCore& core, TextOutput& out) {
  internal::NetworkText text = internal::writePajek(core);
  std::optional<std::string> latin1 = internal::latin1FromUtf8(std::move(text.beforeEdges));
  if (!latin1) {
    throw Error(ErrorKind::kUnsupported, "Pajek cannot hold a name beyond ISO-8859-1");
  }
  text.beforeEdges = std::move(*latin1);
  giveAll(core, std::move(text), out);
}

void writeListText(const NetworkCore& core, TextOutput& out) {
  giveAll(core, internal::writeEdgeList(core), out);
}

void writeArchiveBytes(const NetworkCore& core, TextOutput& out) {
  VEQKeyedArchiver archiver;
  internal::writeArchive(core, archiver);
  out.text = archiver.bytes();
  out.finish();
}

using Write = void(const NetworkCore& core, TextOutput& out);

struct Writer {
  FileFormat format;
  Write* write;
};
constexpr std::array<Writer, 8> kWriters{{{FileFormat::kXnet, writeXnetText},
                                          {FileFormat::kPajek, writePajekText},
                                          {FileFormat::kList, writeListText},
                                          {FileFormat::kMatrixMarket, internal::writeMatrixMarket},
                                          {FileFormat::kGml, internal::writeGml},
                                          {FileFormat::kGraphMl, internal::writeGraphMl},
                                          {FileFormat::kArchive, writeArchiveBytes},
                                          {FileFormat::kCsv, internal::writeEdgeTable}}};
constexpr Writer kVertexTable{FileFormat::kCsv, internal::writeVertexTable};

/// Calls use(source of the bytes), and turns what a writer throws into errors.
template <class Use>
auto withSource(const Network& network, Result<Writer> writer, const Progress& progress, Use use)
    -> decltype(use(ByteSource())) {
  if (!writer) return writer.error();
  const NetworkCore& core = CoreAccess::of(*network.published());
  const ByteSource source = [&](const ByteSink& sink) {
    const std::uint64_t rows = core.store.vertexCount() + core.store.edgeCount();
    internal::Pace pace(progress, rows);
    TextOutput out(sink, pace, rows);
    try {
      writer->write(core, out);
    } catch (const internal::SinkClosed&) {
      return false;
    }
    return true;
  };
  return internal::untilStopped([&]() -> decltype(use(source)) {
    try {
      return use(source);
    } catch (const Error& error) {
      return error;
    } catch (const std::bad_alloc&) {
      return Error(ErrorKind::kMemory, "not enough memory");
    } catch (const std::invalid_argument& refused) {
      return Error(ErrorKind::kUnsupported, refused.what());
    }
  });
}

Result<std::string> textOf(const ByteSource& source) {
  std::string text;
  static_cast<void>(source([&text](std::string_view piece) {
    text += piece;
    return true;
  }));
  return text;
}

Result<Writer> writerOf(FileFormat format) {
  for (const Writer& writer : kWriters) {
    if (writer.format == format) return writer;
  }
  return internal::unhandled(format, "written");
}

}  // namespace

Outcome writeNetwork(const Network& network, const std::string& path, const WriteOptions& options) {
  const std::optional<FileFormat> format =
      options.format ? options.format : fileFormatOfSuffix(path);
  if (!format) {
    std::string known;
    for (const FileFormat each : fileFormats()) known.append(" ").append(suffixOf(each));
    return Error(ErrorKind::kArgument, "no format goes with this name; known are" + known);
  }
  const internal::OwnParallelism own(options.threads);
  return withSource(network, writerOf(*format), options.progress,
                    [&](const ByteSource& source) { return writeFile(path, source); });
}

Result<std::string> networkText(const Network& network, FileFormat format,
                                const Progress& progress) {
  return withSource(network, writerOf(format), progress, textOf);
}

Outcome writeVertexTable(const Network& network, const std::string& path,
                         const Progress& progress) {
  return withSource(network, kVertexTable, progress,
                    [&](const ByteSource& source) { return writeFile(path, source); });
}

Result<std::string> vertexTableText(const Network& network, const Progress& progress) {
  return withSource(network, kVertexTable, progress, textOf);
}

}  // namespace veq
