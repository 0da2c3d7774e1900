// The bytes of a GraphML file.
#include "fuzz/support/input.hpp"
#include "fuzz/support/readings.hpp"
#include "fuzz/support/target.hpp"
#include "veq/readers/reading.hpp"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  veq::fuzz::silenceTheLog();
  veq::fuzz::checkReading(veq::fuzz::textOf(data, size), veq::readers::readNetworkText,
                          veq::FileFormat::kGraphMl);
  return 0;
}
