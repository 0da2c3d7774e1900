#include "veq/readers/reading.hpp"

#include <new>
#include <optional>
#include <utility>

#include "veq/formats/internal/format_recognition.hpp"
#include "veq/formats/internal/guarded_reading.hpp"
#include "veq/formats/internal/walk_file.hpp"
#include "veq/readers/internal/decompression.hpp"
#include "veq/readers/internal/graphml_reader.hpp"
#include "veq/readers/internal/reading_stream.hpp"

namespace veq::readers {
namespace {

using internal::ByteStream;

/// Whether the bytes hold GraphML, in whatever encoding.
bool isXml(std::string_view bytes, const ReadOptions& options) {
  if (options.format) return *options.format == FileFormat::kGraphMl;
  constexpr std::string_view kUtf16[] = {"\xFF\xFE<", "\xFE\xFF"};
  if (bytes.substr(0, 3) == "\xEF\xBB\xBF") bytes.remove_prefix(3);
  if (bytes.substr(0, 3) == kUtf16[0]) return true;
  if (bytes.substr(0, 2) == kUtf16[1] && bytes.size() > 3 && bytes[3] == '<') return true;
  if (bytes.size() > 1 && bytes[0] == '\0' && bytes[1] == '<') return true;
  const std::size_t first = bytes.find_first_not_of(" \t\r\n");
  return first != bytes.npos && bytes[first] == '<';
}

/// What is compressed, or nothing where it is not, or not so that it is read here. Throws Error.
std::optional<ByteStream> whatIsInside(ByteStream& bytes, std::optional<std::uint64_t> most) {
  const std::string_view how = internal::compressionOf(bytes.head());
  if (how != "gzip" && how != "zstd") return std::nullopt;
  ByteStream inside = decompressed(how, bytes, most);
  // There are files that hold nothing but themselves.
  if (!internal::compressionOf(inside.head()).empty()) {
    throw Error(ErrorKind::kUnsupported, "compressed twice; decompress it first", Place{1, 1});
  }
  return inside;
}

Reading readXml(ByteStream& bytes, const ReadOptions& options) {
  return internal::guardedReading(
      options, bytes.expected(),
      [&](internal::ReadContext& context, std::optional<FileFormat>& format) {
        format = FileFormat::kGraphMl;
        return internal::networkOfDraft(readGraphMl(bytes, context), context);
      });
}

}  // namespace

Reading readStream(ByteStream& bytes, const ReadOptions& options, std::string_view name) {
  std::optional<ByteStream> inside;
  bool xml = false;
  try {
    inside = whatIsInside(bytes, options.mostBytes);
    if (inside) name = name.substr(0, name.rfind('.'));  // the suffix before that of compression
    xml = isXml((inside ? *inside : bytes).head(), options);
  } catch (const Error& error) {
    return {error, {}, {}, 0, {}};
  } catch (const std::bad_alloc&) {
    return {Error(ErrorKind::kMemory, "not enough memory"), {}, {}, 0, {}};
  }
  // Out of these comes by itself what an observer throws, and nothing else.
  ByteStream& plain = inside ? *inside : bytes;
  return xml ? readXml(plain, options) : internal::readStream(plain, options, name);
}

Reading readNetworkText(std::string bytes, const ReadOptions& options, std::string_view name) {
  ByteStream stream(std::move(bytes));
  return readers::readStream(stream, options, name);
}

Reading readNetwork(const std::string& path, const ReadOptions& options) {
  Result<ByteStream> bytes = internal::openedInput(path);
  if (!bytes) return {bytes.error(), {}, {}, 0, {}};
  return readers::readStream(bytes.value(), options, path);
}

WalkReading readWalkNetwork(const std::string& path, const WalkReadOptions& options) {
  return internal::readWalkFile(path, options, [&](ByteStream& bytes) {
    std::optional<ByteStream> inside = whatIsInside(bytes, options.reading.mostBytes);
    if (inside) return inside;
    const std::string_view how = internal::compressionOf(bytes.head());
    if (!how.empty()) throw internal::compressedBy(how);
    return inside;
  });
}

}  // namespace veq::readers
