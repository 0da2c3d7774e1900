// Any bytes, whose format is seen from them; compressed ones, too.
#include "fuzz/support/input.hpp"
#include "fuzz/support/readings.hpp"
#include "fuzz/support/target.hpp"
#include "veq/readers/reading.hpp"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  veq::fuzz::silenceTheLog();
  veq::fuzz::checkReading(veq::fuzz::textOf(data, size), veq::readers::readNetworkText);
  return 0;
}
