#include "veq/formats/internal/cbor_reader.hpp"

#include <bit>
#include <utility>

#include "veq/base/internal/encodings.hpp"

namespace veq::internal {
namespace {

std::uint64_t bigEndian(std::string_view bytes) {
  std::uint64_t result = 0;
  for (const char byte : bytes) result = result << 8 | static_cast<unsigned char>(byte);
  return result;
}

// Whether the bytes left may hold what the head announces: each item takes a byte at least.
bool fits(const CborHead& head, std::uint64_t left) {
  switch (head.major) {
    case CborMajor::kBytes:
    case CborMajor::kText:
    case CborMajor::kArray:
      return head.argument <= left;
    case CborMajor::kMap:
      return head.argument <= left / 2;
    default:
      return true;
  }
}

}  // namespace

std::string_view CborReader::take(std::uint64_t length) {
  const std::string_view taken = rest_.substr(0, length);
  rest_.remove_prefix(length);
  return taken;
}

std::optional<std::uint64_t> CborReader::readBigEndian(unsigned width) {
  if (width > rest_.size()) return std::nullopt;
  return bigEndian(take(width));
}

std::optional<CborHead> CborReader::readHead() {
  const auto first = readBigEndian(1);
  if (!first) return std::nullopt;
  CborHead head{static_cast<CborMajor>(*first >> 5), static_cast<std::uint8_t>(*first & 31U), 0};
  if (head.information < kCborOneByte) {
    head.argument = head.information;
  } else if (head.information <= kCborEightBytes) {
    const auto argument = readBigEndian(1U << (head.information - kCborOneByte));
    if (!argument) return std::nullopt;
    head.argument = *argument;
  } else {
    return std::nullopt;  // reserved, or an indefinite length and its end
  }
  // A simple value below 32 has one form only, without a second byte.
  if (head.isSimple(kCborOneByte) && head.argument < 32) return std::nullopt;
  if (!fits(head, rest_.size())) return std::nullopt;
  return head;
}

bool CborReader::skipItem(int depth) {
  if (depth == 0) return false;
  const auto head = readHead();
  if (!head) return false;
  std::uint64_t inside = 0;
  switch (head->major) {
    case CborMajor::kBytes:
    case CborMajor::kText:
      rest_.remove_prefix(head->argument);
      break;
    case CborMajor::kArray:
      inside = head->argument;
      break;
    case CborMajor::kMap:
      inside = 2 * head->argument;
      break;
    case CborMajor::kTag:
      inside = 1;
      break;
    default:
      break;
  }
  while (inside-- > 0) {
    if (!skipItem(depth - 1)) return false;
  }
  return true;
}

std::optional<std::string_view> CborReader::readString() {
  const auto head = readHead();
  return head ? readString(*head) : std::nullopt;
}

std::optional<std::string_view> CborReader::readString(const CborHead& head) {
  if (head.major != CborMajor::kText && head.major != CborMajor::kBytes) return std::nullopt;
  const std::string_view text = take(head.argument);
  if (head.major == CborMajor::kText && !isValidUtf8(text)) return std::nullopt;
  return text;
}

std::optional<Number> CborReader::readNumber(const CborHead& head) {
  if (head.isSimple(kCborFourBytes)) {
    return std::bit_cast<float>(static_cast<std::uint32_t>(head.argument));
  }
  if (head.isSimple(kCborEightBytes)) return std::bit_cast<double>(head.argument);
  if (head.major == CborMajor::kTag && head.argument == kCborUnsignedBignum) {
    const auto bytes = readHead();
    if (!bytes || bytes->major != CborMajor::kBytes || bytes->argument > sizeof(std::uint64_t)) {
      return std::nullopt;
    }
    return bigEndian(take(bytes->argument));
  }
  const auto value = static_cast<std::int64_t>(head.argument);
  if (head.major == CborMajor::kUnsigned) {
    // Beyond the signed range other writers have no other form than the plain integer.
    return value >= 0 ? Number(value) : Number(head.argument);
  }
  if (head.major == CborMajor::kNegative && value >= 0) return -1 - value;
  return std::nullopt;
}

template <class T>
Owned<VEQNumberArray> CborReader::readArrayOf() {
  const auto head = readHead();
  if (!head || head->major != CborMajor::kBytes || head->argument % sizeof(T) != 0) return nullptr;
  RawVector<T> elements(head->argument / sizeof(T));
  copyLittleEndian<T>(elements.data(), take(head->argument).data(), elements.size());
  return std::make_unique<VEQNumberArray>(std::move(elements));
}

Owned<VEQNumberArray> CborReader::readNumbers(const CborHead& head) {
  if (head.major != CborMajor::kTag) return nullptr;
  switch (head.argument) {
    case kCborUnsignedArray:
      return readArrayOf<std::uint64_t>();
    case kCborIntegerArray:
      return readArrayOf<std::int64_t>();
    case kCborFloatArray:
      return readArrayOf<float>();
    case kCborDoubleArray:
      return readArrayOf<double>();
    default:
      return nullptr;
  }
}

}  // namespace veq::internal
