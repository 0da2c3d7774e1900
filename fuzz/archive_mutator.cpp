// Mutates archives item by item, so that what surrounds an item stays an archive: of bytes changed
// anywhere the reader refuses nearly all at once.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <string_view>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

using namespace std::string_view_literals;

/// Where an item lies, with all that is in it.
struct Extent {
  std::size_t begin;
  std::size_t end;
};

/// Finds the items of well-formed CBOR, as far as it is that.
class ItemFinder {
 public:
  explicit ItemFinder(std::string_view bytes) : bytes_(bytes) { read(0); }
  [[nodiscard]] const std::vector<Extent>& items() const { return items_; }

 private:
  bool read(int depth) {
    if (depth > 20 || at_ >= bytes_.size()) return false;
    const std::size_t begin = at_;
    const auto first = static_cast<unsigned char>(bytes_[at_++]);
    std::uint64_t argument = first & 31U;
    if (argument > 27) return false;
    if (argument >= 24 && !readArgument(std::size_t{1} << (argument - 24), argument)) return false;
    const unsigned major = first >> 5U;
    if (major == 2 || major == 3) {
      if (argument > bytes_.size() - at_) return false;
      at_ += static_cast<std::size_t>(argument);
    }
    std::uint64_t children = major == 4 ? argument : major == 5 ? 2 * argument : major == 6 ? 1 : 0;
    for (; children > 0; --children) {
      if (!read(depth + 1)) return false;
    }
    items_.push_back({begin, at_});
    return true;
  }

  bool readArgument(std::size_t length, std::uint64_t& argument) {
    if (length > bytes_.size() - at_) return false;
    argument = 0;
    for (; length > 0; --length) {
      argument = argument << 8U | static_cast<unsigned char>(bytes_[at_++]);
    }
    return true;
  }

  std::string_view bytes_;
  std::size_t at_ = 0;
  std::vector<Extent> items_;
};

constexpr std::array kItems = {
    "\xF4"sv,
    "\xF5"sv,
    "\xF6"sv,
    "\x00"sv,
    "\x20"sv,
    "\x1B\x80\x00\x00\x00\x00\x00\x00\x00"sv,
    "\x3B\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF"sv,
    "\xC2\x48\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"sv,
    "\xC2\x40"sv,
    "\xFA\x7F\xC0\x00\x00"sv,
    "\xFB\x3F\xF0\x00\x00\x00\x00\x00\x00"sv,
    "\x60"sv,
    "\x61\x0D"sv,
    "\x64Name"sv,
    "\x68Position"sv,
    "\x41\xFF"sv,
    "\x80"sv,
    "\x82\x61\x61\xF6"sv,
    "\xA0"sv,
    "\xA3\x69precision\x01\x61x\xFB\x00\x00\x00\x00\x00\x00\x00\x00\x61y\xFB\x00\x00\x00\x00\x00"
    "\x00"
    "\x00\x00"sv,
    "\xA3\x69precision\x00\x61x\xD8\x56\x40\x61y\xD8\x56\x40"sv,
    "\xA1\x61k\xD8\x56\x48\x00\x00\x00\x00\x00\x00\xF0\x3F"sv,
    "\xD8\x47\x40"sv,
    "\xD8\x47\x48\x00\x00\x00\x00\x00\x00\x00\x00"sv,
    "\xD8\x47\x48\x01\x00\x00\x00\x00\x00\x00\x00"sv,
    "\xD8\x47\x50\x00\x00\x00\x00\x00\x00\x00\x00\x02\x00\x00\x00\x00\x00\x00\x00"sv,
    "\xD8\x4F\x48\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"sv,
    "\xD8\x55\x40"sv,
    "\xD8\x55\x44\x00\x00\x80\x3F"sv,
    "\xD8\x55\x48\x00\x00\x80\x3F\x00\x00\x00\x40"sv,
    "\xD8\x56\x48\x00\x00\x00\x00\x00\x00\xF8\x7F"sv,
};

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed) {
  std::minstd_rand random(seed);
  const auto below = [&random](std::size_t limit) { return random() % limit; };
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const std::vector<Extent> items = ItemFinder(bytes).items();
  if (items.empty() || below(4) == 0) return LLVMFuzzerMutate(data, size, maxSize);

  const Extent old = items[below(items.size())];
  std::string piece;
  if (below(3) > 0) {
    piece = kItems[below(kItems.size())];
  } else {
    const Extent other = items[below(items.size())];
    piece = bytes.substr(other.begin, other.end - other.begin);
  }
  const std::string result =
      std::string(bytes.substr(0, old.begin)) + piece + std::string(bytes.substr(old.end));
  if (result.size() > maxSize) return LLVMFuzzerMutate(data, size, maxSize);
  std::memcpy(data, result.data(), result.size());
  return result.size();
}
