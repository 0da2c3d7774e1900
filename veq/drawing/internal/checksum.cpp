#include "veq/drawing/internal/checksum.hpp"

#include <array>

namespace veq::internal {
namespace {

constexpr std::array<std::uint32_t, 256> makeTable() {
  std::array<std::uint32_t, 256> table{};
  for (std::uint32_t byte = 0; byte < 256; ++byte) {
    std::uint32_t rest = byte;
    for (int bit = 0; bit < 8; ++bit) {
      rest = (rest & 1) != 0 ? rest >> 1 ^ 0xEDB88320 : rest >> 1;
    }
    table[byte] = rest;
  }
  return table;
}
constexpr std::array<std::uint32_t, 256> kTable = makeTable();

std::uint32_t withByte(std::uint32_t state, std::uint64_t byte) {
  return kTable[(state ^ byte) & 0xFF] ^ state >> 8;
}

}  // namespace

void Crc32::add(std::string_view bytes) {
  for (const char byte : bytes) state_ = withByte(state_, static_cast<unsigned char>(byte));
}

void Crc32::add(std::span<const std::uint64_t> numbers) {
  for (std::uint64_t number : numbers) {
    for (int i = 0; i < 8; ++i, number >>= 8) state_ = withByte(state_, number & 0xFF);
  }
}

}  // namespace veq::internal
