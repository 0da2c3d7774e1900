#include "veq/formats/internal/archive_pass.hpp"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "veq/formats/internal/archive_keys.hpp"
#include "veq/formats/internal/cbor.hpp"
#include "veq/formats/internal/read_context.hpp"

namespace veq::internal {
namespace {

constexpr std::uint64_t kEdgesAtOnce = std::uint64_t{1} << 17;

/// Bytes one behind the other, with their number.
class Bytes {
 public:
  explicit Bytes(ByteStream& bytes) : bytes_(bytes) {}

  [[nodiscard]] std::uint64_t taken() const { return taken_; }

  void read(void* into, std::size_t count) {
    auto* at = static_cast<char*>(into);
    while (count > 0) {
      const std::size_t some = bytes_.read(at, count);
      if (some == 0) failAt({1, taken_ + 1}, "not a whole archive");
      taken_ += some;
      at += some;
      count -= some;
    }
  }
  void skipTo(std::uint64_t place) {
    std::vector<char> unused(ByteStream::kPiece);
    while (taken_ < place) {
      read(unused.data(),
           static_cast<std::size_t>(std::min<std::uint64_t>(unused.size(), place - taken_)));
    }
  }

 private:
  ByteStream& bytes_;
  std::uint64_t taken_ = 0;
};

struct Item {
  CborMajor major;
  std::uint64_t argument;
};

Item readItem(Bytes& bytes) {
  const std::uint64_t place = bytes.taken() + 1;
  std::uint8_t first = 0;
  bytes.read(&first, 1);
  const auto major = static_cast<CborMajor>(first >> 5);
  const unsigned information = first & 31U;
  if (information < kCborOneByte) return {major, information};
  if (information > kCborEightBytes) failAt({1, place}, "not a whole archive");
  std::array<std::uint8_t, 8> argument{};
  const std::size_t size = std::size_t{1} << (information - kCborOneByte);
  bytes.read(argument.data(), size);
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < size; ++i) value = value << 8 | argument[i];
  return {major, value};
}

class HeadReader {
 public:
  explicit HeadReader(ByteStream& bytes) : bytes_(bytes) {}

  ArchiveHead read() {
    const Item map = readItem(bytes_);
    if (map.major != CborMajor::kMap) failAt({1, 1}, "not a whole archive");
    for (std::uint64_t entry = 0; entry < map.argument && head_.targets == 0; ++entry) {
      readEntry(readKey());
    }
    if (head_.targets == 0) failEntry(archive2::kTo);
    return head_;
  }

 private:
  std::string readKey() {
    const Item key = readItem(bytes_);
    constexpr std::uint64_t kLongest = 64;
    if (key.major != CborMajor::kText || key.argument > kLongest) failOther();
    std::string text(static_cast<std::size_t>(key.argument), ' ');
    bytes_.read(text.data(), text.size());
    return text;
  }

  void readEntry(std::string_view key) {
    using namespace archive2;
    const Item item = readItem(bytes_);
    if (key == kVersion) {
      version_ = requireCount(item, key);
      if (*version_ == 2) return;
      failAt({1, bytes_.taken()}, "an archive of version " + std::to_string(*version_) +
                                      ", where 2 is the newest known");
    }
    if (!version_) failOther();
    if (key == kDirected) {
      const bool isTrue = item.argument == kCborTrue;
      if (item.major != CborMajor::kSimple || (!isTrue && item.argument != kCborFalse)) {
        failEntry(key);
      }
      head_.directed = isTrue;
      isDirectedKnown_ = true;
    } else if (key == kVertices) {
      vertices_ = head_.vertices = requireCount(item, key);
    } else if (key == kFrom && isDirectedKnown_ && vertices_) {
      head_.edges = readArray(item, key);
      head_.sources = bytes_.taken();
      bytes_.skipTo(head_.sources + 8 * head_.edges);
    } else if (key == kTo && head_.sources != 0) {
      const std::uint64_t targets = readArray(item, key);
      if (targets != head_.edges) {
        failAt({1, bytes_.taken()}, "the archive has " + std::to_string(head_.edges) +
                                        " sources of edges and " + std::to_string(targets) +
                                        " targets");
      }
      head_.targets = bytes_.taken();
    } else {
      failOther();
    }
  }

  std::uint64_t requireCount(const Item& item, std::string_view key) {
    if (item.major != CborMajor::kUnsigned) failEntry(key);
    return item.argument;
  }

  std::uint64_t readArray(const Item& tag, std::string_view key) {
    if (tag.major != CborMajor::kTag || tag.argument != kCborUnsignedArray) failEntry(key);
    const Item array = readItem(bytes_);
    constexpr std::uint64_t kMost = UINT64_MAX / 4;
    const bool isWhole = array.argument % 8 == 0 && array.argument < kMost;
    if (array.major != CborMajor::kBytes || !isWhole) failEntry(key);
    return array.argument / 8;
  }

  [[noreturn]] void failEntry(std::string_view key) const {
    failAt({1, bytes_.taken()},
           "the archive's entry \"" + std::string(key) + "\" is missing or not what it should be");
  }
  [[noreturn]] void failOther() const {
    throw Error(ErrorKind::kUnsupported,
                "an archive of the published kind, or with its entries in another order than they "
                "are written in, is read as a whole network",
                Place{1, bytes_.taken()});
  }

  Bytes bytes_;
  ArchiveHead head_;
  std::optional<std::uint64_t> version_;
  std::optional<std::uint64_t> vertices_;
  bool isDirectedKnown_ = false;
};

void readEnds(Bytes& bytes, std::vector<char>& buffer, std::vector<std::uint64_t>& ends) {
  buffer.resize(ends.size() * sizeof(std::uint64_t));
  bytes.read(buffer.data(), buffer.size());
  copyLittleEndian<std::uint64_t>(ends.data(), buffer.data(), ends.size());
}

}  // namespace

ArchiveHead readArchiveHead(ByteStream& bytes) { return HeadReader(bytes).read(); }

void readArchiveEdges(const ArchiveHead& head, ByteStream& ofSources, ByteStream& ofTargets,
                      const EdgeReceiver& receiver) {
  Bytes sources(ofSources);
  Bytes targets(ofTargets);
  sources.skipTo(head.sources);
  targets.skipTo(head.targets);
  std::vector<char> buffer;
  std::vector<std::uint64_t> from;
  std::vector<std::uint64_t> to;
  for (std::uint64_t first = 0; first < head.edges; first += kEdgesAtOnce) {
    from.resize(static_cast<std::size_t>(std::min(kEdgesAtOnce, head.edges - first)));
    to.resize(from.size());
    readEnds(sources, buffer, from);
    readEnds(targets, buffer, to);
    receiver(from, to);
  }
}

}  // namespace veq::internal
