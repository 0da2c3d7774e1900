// A text that gzip or zstd compresses, perhaps many times over, and what damage does to that.
#include <zlib.h>
#include <zstd.h>

#include <algorithm>
#include <string>
#include <string_view>

#include "fuzz/support/check.hpp"
#include "fuzz/support/input.hpp"
#include "fuzz/support/readings.hpp"
#include "fuzz/support/target.hpp"
#include "veq/formats/internal/format_recognition.hpp"
#include "veq/readers/internal/reading_stream.hpp"
#include "veq/readers/reading.hpp"

namespace {

constexpr std::uint64_t kMostBytes = 1 << 14;

std::string zipped(std::string_view text) {
  std::string bytes(compressBound(static_cast<uLong>(text.size())) + 64, '\0');
  z_stream stream{};
  VEQ_CHECK(deflateInit2(&stream, 1, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY) == Z_OK);
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
  stream.avail_in = static_cast<uInt>(text.size());
  stream.next_out = reinterpret_cast<Bytef*>(bytes.data());
  stream.avail_out = static_cast<uInt>(bytes.size());
  VEQ_CHECK(deflate(&stream, Z_FINISH) == Z_STREAM_END);
  bytes.resize(stream.total_out);
  deflateEnd(&stream);
  return bytes;
}

std::string zstded(std::string_view text) {
  std::string bytes(ZSTD_compressBound(text.size()), '\0');
  bytes.resize(ZSTD_compress(bytes.data(), bytes.size(), text.data(), text.size(), 1));
  return bytes;
}

bool areAlike(const veq::Reading& a, const veq::Reading& b) {
  if (a.hasValue() != b.hasValue() || a.format() != b.format()) return false;
  if (!a) return a.error().text() == b.error().text();
  return a.value().countVertices() == b.value().countVertices() &&
         a.value().countEdges() == b.value().countEdges() && a.notes().size() == b.notes().size();
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  veq::fuzz::silenceTheLog();
  veq::fuzz::Input input(data, size);
  const bool byGzip = input.flag();
  const std::uint64_t times = std::uint64_t{1} << input.below(18);
  const std::uint64_t members = 1 + input.below(3);
  const std::uint64_t damages = input.below(4);
  struct Damage {
    std::size_t place;
    std::uint8_t change;
  };
  Damage damage[3] = {};
  for (Damage& each : damage) each = {256U * input.byte() + input.byte(), input.byte()};
  const std::string_view part = input.rest().substr(0, 200);
  // A bomb, unless the text is short.
  std::string text;
  for (std::uint64_t i = 0; i < times && text.size() <= 2 * kMostBytes; ++i) text += part;
  std::string bytes;
  for (std::uint64_t i = 0; i < members; ++i) bytes += byGzip ? zipped(text) : zstded(text);
  std::string all;
  for (std::uint64_t i = 0; i < members; ++i) all += text;

  veq::ReadOptions options;
  options.mostVertices = 1000;
  options.mostBytes = kMostBytes;
  const veq::Reading found = veq::readers::readNetworkText(bytes, options);
  const bool isNested = !veq::internal::compressionOf(all).empty();
  if (all.size() > kMostBytes) {
    // A second network ends the reading early.
    VEQ_CHECK(!found.hasValue() || found.format() == veq::FileFormat::kPajek);
  } else if (!isNested) {
    VEQ_CHECK(areAlike(found, veq::readers::readNetworkText(all, options)));
  }

  for (std::uint64_t i = 0; i < damages && i < 3; ++i) {
    const std::size_t place = damage[i].place % bytes.size();
    bytes[place] = static_cast<char>(static_cast<std::uint8_t>(bytes[place]) ^ damage[i].change);
    if (damage[i].change == 0) bytes.resize(place + 1);
  }
  if (damages == 0) return 0;
  veq::fuzz::checkReading(bytes, veq::readers::readNetworkText);
  veq::fuzz::checkPieces(bytes, veq::readers::readStream);
  return 0;
}
