#include "veq/readers/internal/decompression.hpp"

#include <zlib.h>
#include <zstd.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <new>

#include "veq/base/result.hpp"

namespace veq::readers {
namespace {

constexpr std::size_t kPiece = std::size_t{1} << 18;

[[noreturn]] void fail(const char* what) { throw Error(ErrorKind::kFormat, what); }

void append(std::string& text, const char* piece, std::size_t size, std::uint64_t most) {
  if (size > most - text.size()) {
    throw Error(ErrorKind::kFormat,
                "decompressed it has more than the " + std::to_string(most) + " bytes that it may");
  }
  text.append(piece, size);
}

struct Inflater {
  Inflater() {
    constexpr int kGzipOnly = 15 + 16;
    if (inflateInit2(&stream, kGzipOnly) != Z_OK) throw std::bad_alloc();
  }
  ~Inflater() { inflateEnd(&stream); }
  Inflater(const Inflater&) = delete;
  Inflater& operator=(const Inflater&) = delete;

  z_stream stream{};
};

}  // namespace

std::string unzipped(std::string_view bytes, std::uint64_t most) {
  Inflater inflater;
  z_stream& stream = inflater.stream;
  const std::unique_ptr<char[]> piece(new char[kPiece]);
  std::string text;
  while (!bytes.empty()) {
    const std::size_t some = std::min<std::size_t>(bytes.size(), std::size_t{1} << 30);
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
    stream.avail_in = static_cast<uInt>(some);
    stream.next_out = reinterpret_cast<Bytef*>(piece.get());
    stream.avail_out = static_cast<uInt>(kPiece);
    const int status = inflate(&stream, Z_NO_FLUSH);
    if (status == Z_MEM_ERROR) throw std::bad_alloc();
    if (status != Z_OK && status != Z_STREAM_END && status != Z_BUF_ERROR) {
      fail("what gzip has compressed is damaged");
    }
    append(text, piece.get(), kPiece - stream.avail_out, most);
    const std::size_t taken = some - stream.avail_in;
    bytes.remove_prefix(taken);
    if (status == Z_STREAM_END) {
      // What follows is another piece, or zeros that fill a block.
      if (bytes.find_first_not_of('\0') == bytes.npos) return text;
      if (inflateReset(&stream) != Z_OK) fail("what gzip has compressed is damaged");
    } else if (taken == 0 && stream.avail_out == kPiece) {
      break;
    }
  }
  fail("what gzip has compressed ends too early");
}

std::string unzstded(std::string_view bytes, std::uint64_t most) {
  const std::unique_ptr<ZSTD_DCtx, decltype(&ZSTD_freeDCtx)> context(ZSTD_createDCtx(),
                                                                     &ZSTD_freeDCtx);
  if (!context) throw std::bad_alloc();
  const std::unique_ptr<char[]> piece(new char[kPiece]);
  std::string text;
  ZSTD_inBuffer in{bytes.data(), bytes.size(), 0};
  std::size_t missing = 0;
  for (bool full = true; in.pos < in.size || full;) {
    ZSTD_outBuffer out{piece.get(), kPiece, 0};
    missing = ZSTD_decompressStream(context.get(), &out, &in);
    if (ZSTD_isError(missing)) fail("what zstd has compressed is damaged");
    append(text, piece.get(), out.pos, most);
    // A full buffer may hide that more is to come.
    full = out.pos == out.size;
  }
  if (missing != 0) fail("what zstd has compressed ends too early");
  return text;
}

}  // namespace veq::readers
