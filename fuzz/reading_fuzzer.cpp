// Any bytes, whose format is seen from them; compressed ones, too.
#include "fuzz/support/input.hpp"
#include "fuzz/support/readings.hpp"
#include "fuzz/support/target.hpp"
#include "veq/readers/internal/reading_stream.hpp"
#include "veq/readers/reading.hpp"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  veq::fuzz::silenceTheLog();
  const std::string_view bytes = veq::fuzz::textOf(data, size);
  veq::fuzz::checkReading(bytes, veq::readers::readNetworkText);
  veq::fuzz::checkPieces(bytes, veq::readers::readStream);
  return 0;
}
