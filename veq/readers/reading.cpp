#include "veq/readers/reading.hpp"

#include <limits>
#include <new>
#include <stdexcept>
#include <utility>

#include "veq/base/files.hpp"
#include "veq/formats/internal/format_recognition.hpp"
#include "veq/formats/internal/guarded_reading.hpp"
#include "veq/readers/internal/decompression.hpp"
#include "veq/readers/internal/graphml_reader.hpp"

namespace veq::readers {
namespace {

std::uint64_t mostBytes(const ReadOptions& options, std::uint64_t compressed) {
  constexpr std::uint64_t kEachByte = 64;
  constexpr std::uint64_t kBesides = std::uint64_t{1} << 30;
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
  if (options.mostBytes) return *options.mostBytes;
  return compressed > (kMost - kBesides) / kEachByte ? kMost : kEachByte * compressed + kBesides;
}

Result<std::string> decompressed(std::string_view how, std::string_view bytes, std::uint64_t most) {
  try {
    return how == "gzip" ? unzipped(bytes, most) : unzstded(bytes, most);
  } catch (const Error& error) {
    return error;
  } catch (const std::bad_alloc&) {
    return Error(ErrorKind::kMemory, "not enough memory");
  } catch (const std::length_error&) {
    return Error(ErrorKind::kMemory, "not enough memory");
  }
}

/// Whether the bytes hold GraphML, in whatever encoding.
bool isXml(std::string_view bytes, const ReadOptions& options) {
  if (options.format) return *options.format == FileFormat::kGraphMl;
  constexpr std::string_view kUtf16[] = {"\xFF\xFE<", "\xFE\xFF"};
  if (bytes.substr(0, 3) == "\xEF\xBB\xBF") bytes.remove_prefix(3);
  if (bytes.substr(0, 3) == kUtf16[0]) return true;
  if (bytes.substr(0, 2) == kUtf16[1] && bytes.size() > 3 && bytes[3] == '<') return true;
  const std::size_t first = bytes.find_first_not_of(" \t\r\n");
  return first != bytes.npos && bytes[first] == '<';
}

}  // namespace

Reading readNetworkText(std::string bytes, const ReadOptions& options, std::string_view name) {
  if (const std::string_view how = internal::compressionOf(bytes); how == "gzip" || how == "zstd") {
    Result<std::string> text = decompressed(how, bytes, mostBytes(options, bytes.size()));
    if (!text) return {text.error(), {}, {}, 0, {}};
    std::string().swap(bytes);
    // The suffix before that of the compression.
    return readers::readNetworkText(std::move(text).value(), options,
                                    name.substr(0, name.rfind('.')));
  }
  if (!isXml(bytes, options)) return veq::readNetworkText(std::move(bytes), options, name);
  return internal::guardedReading(
      options, bytes.size(),
      [&](internal::ReadContext& context, std::optional<FileFormat>& format) {
        format = FileFormat::kGraphMl;
        return internal::networkOfDraft(readGraphMl(std::move(bytes), context), context);
      });
}

Reading readNetwork(const std::string& path, const ReadOptions& options) {
  Result<std::string> bytes = readFile(path);
  if (!bytes) return {bytes.error(), {}, {}, 0, {}};
  return readers::readNetworkText(std::move(bytes).value(), options, path);
}

}  // namespace veq::readers
