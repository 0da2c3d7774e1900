// The bytes of a Pajek file, in whatever encoding they are.
#include <optional>
#include <string>

#include "fuzz/support/input.hpp"
#include "fuzz/support/invariants.hpp"
#include "fuzz/support/target.hpp"
#include "veq/base/internal/encodings.hpp"
#include "veq/formats/internal/pajek.hpp"

namespace veq::fuzz {
namespace {

std::string utf16From(std::string_view latin1, internal::ByteOrder order) {
  const bool little = order == internal::ByteOrder::kLittleEndian;
  std::string bytes = little ? "\xFF\xFE" : "\xFE\xFF";
  for (const char byte : latin1) {
    bytes += little ? byte : '\0';
    bytes += little ? '\0' : byte;
  }
  return bytes;
}

// A text that ISO-8859-1 can hold means the same in every encoding.
void checkEncodings(const std::string& text) {
  const std::optional<std::string> latin1 = internal::latin1FromUtf8(text);
  if (!latin1) return;
  VEQ_CHECK(internal::utf8FromLatin1(*latin1) == text);
  VEQ_CHECK(internal::decodeAutomatically("\xEF\xBB\xBF" + text) == text);
  for (const auto order : {internal::ByteOrder::kLittleEndian, internal::ByteOrder::kBigEndian}) {
    VEQ_CHECK(internal::decodeAutomatically(utf16From(*latin1, order)) == text);
  }
}

void run(std::string_view bytes) {
  const std::optional<std::string> text = internal::decodeAutomatically(std::string(bytes));
  if (!text) return;
  VEQ_CHECK(internal::isValidUtf8(*text));
  checkEncodings(*text);
  // The reader itself fills as many names as the text says there are.
  if (!holdsWorthyNumbers(*text)) return;
  const auto network = VEQNetwork::initWithNetworkPajekFormattedString(*text);
  if (!network) return;
  checkNetwork(*network);
  checkPajekRoundTrip(*network);
  checkRoundTrip(*network, bytes.size());
}

}  // namespace
}  // namespace veq::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  veq::fuzz::silenceTheLog();
  veq::fuzz::run(veq::fuzz::textOf(data, size));
  return 0;
}
