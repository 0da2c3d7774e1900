#include "veq/readers/internal/decompression.hpp"

#include <zlib.h>
#include <zstd.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>
#include <string>

#include "veq/base/result.hpp"

namespace veq::readers {
namespace {

using internal::ByteStream;

/// The compressed bytes, some at a time.
class Compressed {
 public:
  explicit Compressed(ByteStream& bytes) : bytes_(bytes), buffer_(new char[ByteStream::kPiece]) {}

  /// What has not been taken, of which there is none at the end alone.
  std::string_view rest() {
    if (rest_.empty()) {
      rest_ = {buffer_.get(), bytes_.read(buffer_.get(), ByteStream::kPiece)};
      read_ += rest_.size();
    }
    return rest_;
  }
  void take(std::size_t count) { rest_.remove_prefix(count); }
  /// The place of the next byte, in a file whose one line it is.
  [[nodiscard]] Place place() const { return {1, read_ - rest_.size() + 1}; }
  /// How many bytes there are, as far as anybody knows.
  [[nodiscard]] std::uint64_t size() const { return std::max(bytes_.expected(), read_); }

 private:
  ByteStream& bytes_;
  std::unique_ptr<char[]> buffer_;
  std::string_view rest_;
  std::uint64_t read_ = 0;
};

class Unzip {
 public:
  Unzip() {
    constexpr int kGzipOnly = 15 + 16;
    if (inflateInit2(&stream_, kGzipOnly) != Z_OK) throw std::bad_alloc();
  }
  ~Unzip() { inflateEnd(&stream_); }
  Unzip(const Unzip&) = delete;
  Unzip& operator=(const Unzip&) = delete;

  static constexpr const char* kName = "gzip";

  /// How many bytes it made of the input; none where that is damaged.
  std::optional<std::size_t> run(Compressed& in, char* into, std::size_t capacity) {
    const std::string_view rest = in.rest();
    stream_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(rest.data()));
    stream_.avail_in = static_cast<uInt>(rest.size());
    stream_.next_out = reinterpret_cast<Bytef*>(into);
    stream_.avail_out = static_cast<uInt>(capacity);
    if (isWhole_ && inflateReset(&stream_) != Z_OK) return std::nullopt;
    const int status = inflate(&stream_, Z_NO_FLUSH);
    if (status == Z_MEM_ERROR) throw std::bad_alloc();
    // Also where it is damaged, which is then told by its place.
    in.take(rest.size() - stream_.avail_in);
    if (status != Z_OK && status != Z_STREAM_END && status != Z_BUF_ERROR) return std::nullopt;
    isWhole_ = status == Z_STREAM_END;
    return capacity - stream_.avail_out;
  }
  /// Whether nothing is missing. Zeros may fill a block behind the end.
  bool isWhole(Compressed& in) {
    while (isWhole_ && !in.rest().empty() && in.rest().front() == '\0') {
      in.take(std::min(in.rest().find_first_not_of('\0'), in.rest().size()));
    }
    return isWhole_ && in.rest().empty();
  }

 private:
  z_stream stream_{};
  bool isWhole_ = false;
};

class Unzstd {
 public:
  Unzstd() : context_(ZSTD_createDCtx(), &ZSTD_freeDCtx) {
    if (!context_) throw std::bad_alloc();
  }

  static constexpr const char* kName = "zstd";

  std::optional<std::size_t> run(Compressed& in, char* into, std::size_t capacity) {
    const std::string_view rest = in.rest();
    ZSTD_inBuffer from{rest.data(), rest.size(), 0};
    ZSTD_outBuffer to{into, capacity, 0};
    const std::size_t missing = ZSTD_decompressStream(context_.get(), &to, &from);
    in.take(from.pos);
    if (ZSTD_isError(missing)) return std::nullopt;
    isWhole_ = missing == 0;
    return to.pos;
  }
  bool isWhole(Compressed& in) const { return isWhole_ && in.rest().empty(); }

 private:
  std::unique_ptr<ZSTD_DCtx, decltype(&ZSTD_freeDCtx)> context_;
  bool isWhole_ = false;
};

/// Gives what a decompressor makes of the bytes, and no more than it may.
template <class Decompressor>
class Decompression {
 public:
  Decompression(ByteStream& bytes, std::optional<std::uint64_t> most) : in_(bytes), most_(most) {}

  std::size_t operator()(char* into, std::size_t capacity) {
    // zlib counts in 32 bits.
    capacity = std::min(capacity, std::size_t{1} << 30);
    while (!decompressor_.isWhole(in_)) {
      const bool atEnd = in_.rest().empty();
      const std::optional<std::size_t> made = decompressor_.run(in_, into, capacity);
      if (!made) fail("is damaged");
      if (*made != 0) return counted(*made);
      if (atEnd) fail("ends too early");
    }
    return 0;
  }

 private:
  [[noreturn]] void fail(const char* how) const {
    throw Error(ErrorKind::kFormat,
                std::string("what ") + Decompressor::kName + " has compressed " + how, in_.place());
  }

  std::size_t counted(std::size_t bytes) {
    constexpr std::uint64_t kEachByte = 64;
    constexpr std::uint64_t kBesides = std::uint64_t{1} << 30;
    made_ += bytes;
    const std::uint64_t most = most_.value_or(kEachByte * in_.size() + kBesides);
    if (made_ > most) {
      throw Error(
          ErrorKind::kFormat,
          "decompressed it has more than the " + std::to_string(most) + " bytes that it may",
          in_.place());
    }
    return bytes;
  }

  Compressed in_;
  Decompressor decompressor_;
  std::optional<std::uint64_t> most_;
  std::uint64_t made_ = 0;
};

template <class Decompressor>
ByteStream streamOf(ByteStream& bytes, std::optional<std::uint64_t> most) {
  // Functions are copied, and this is not.
  auto work = std::make_shared<Decompression<Decompressor>>(bytes, most);
  return {[work](char* into, std::size_t capacity) { return (*work)(into, capacity); }, 0};
}

}  // namespace

ByteStream decompressed(std::string_view how, ByteStream& bytes,
                        std::optional<std::uint64_t> most) {
  return how == "gzip" ? streamOf<Unzip>(bytes, most) : streamOf<Unzstd>(bytes, most);
}

}  // namespace veq::readers
