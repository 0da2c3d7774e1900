#include "veq/formats/internal/cbor_writer.hpp"

#include <array>
#include <bit>
#include <cstring>
#include <new>

#include "veq/base/internal/encodings.hpp"

namespace veq::internal {
namespace {

unsigned char firstByte(CborMajor major, unsigned information) {
  return static_cast<unsigned char>(static_cast<unsigned>(major) << 5 | information);
}

// The low bytes of the bits, the most significant first.
void putBigEndian(unsigned char* to, std::uint64_t bits, unsigned width) {
  for (unsigned i = 0; i < width; ++i) {
    to[i] = static_cast<unsigned char>(bits >> 8 * (width - 1 - i));
  }
}

// The head in its shortest form; returns its length.
unsigned putHead(unsigned char* to, CborMajor major, std::uint64_t argument) {
  if (argument < kCborOneByte) {
    to[0] = firstByte(major, static_cast<unsigned>(argument));
    return 1;
  }
  unsigned information = kCborEightBytes;
  if (argument <= UINT8_MAX) {
    information = kCborOneByte;
  } else if (argument <= UINT16_MAX) {
    information = kCborTwoBytes;
  } else if (argument <= UINT32_MAX) {
    information = kCborFourBytes;
  }
  const unsigned width = 1U << (information - kCborOneByte);
  to[0] = firstByte(major, information);
  putBigEndian(to + 1, argument, width);
  return 1 + width;
}

}  // namespace

unsigned char* CborWriter::extend(std::uint64_t howMany) {
  if (howMany > UINT64_MAX - size_) throw std::bad_alloc();
  block_.reserve(size_ + howMany);
  unsigned char* at = block_.data() + size_;
  size_ += howMany;
  return at;
}

void CborWriter::writeHead(CborMajor major, std::uint64_t argument) {
  std::array<unsigned char, kHeadRoom> head;
  const unsigned length = putHead(head.data(), major, argument);
  std::memcpy(extend(length), head.data(), length);
}

std::uint64_t CborWriter::placeHead(std::uint64_t end, CborMajor major, std::uint64_t argument) {
  std::array<unsigned char, kHeadRoom> head;
  const unsigned length = putHead(head.data(), major, argument);
  std::memcpy(block_.data() + end - length, head.data(), length);
  return end - length;
}

void CborWriter::writeFixed(unsigned char first, std::uint64_t bits, unsigned width) {
  unsigned char* at = extend(1 + width);
  at[0] = first;
  putBigEndian(at + 1, bits, width);
}

void CborWriter::writeBool(bool value) {
  writeHead(CborMajor::kSimple, value ? kCborTrue : kCborFalse);
}

void CborWriter::writeNull() { writeHead(CborMajor::kSimple, kCborNull); }

void CborWriter::writeString(std::string_view text) {
  writeHead(isValidUtf8(text) ? CborMajor::kText : CborMajor::kBytes, text.size());
  unsigned char* at = extend(text.size());
  if (!text.empty()) std::memcpy(at, text.data(), text.size());
}

void CborWriter::writeNumber(std::int64_t value) {
  if (value >= 0) {
    writeHead(CborMajor::kUnsigned, static_cast<std::uint64_t>(value));
  } else {
    // -1 - value, which is the complement of the bits.
    writeHead(CborMajor::kNegative, ~static_cast<std::uint64_t>(value));
  }
}

void CborWriter::writeNumber(std::uint64_t value) {
  writeHead(CborMajor::kTag, kCborUnsignedBignum);
  writeFixed(firstByte(CborMajor::kBytes, sizeof value), value, sizeof value);
}

void CborWriter::writeNumber(float value) {
  writeFixed(firstByte(CborMajor::kSimple, kCborFourBytes), std::bit_cast<std::uint32_t>(value),
             sizeof value);
}

void CborWriter::writeNumber(double value) {
  writeFixed(firstByte(CborMajor::kSimple, kCborEightBytes), std::bit_cast<std::uint64_t>(value),
             sizeof value);
}

void CborWriter::writeNumbers(const VEQNumberArray& numbers) {
  numbers.visit([this](auto elements) { writeNumbers(elements); });
}

}  // namespace veq::internal
