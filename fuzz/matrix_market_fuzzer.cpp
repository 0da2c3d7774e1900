// The bytes of a Matrix Market file.
#include "fuzz/support/input.hpp"
#include "fuzz/support/readings.hpp"
#include "fuzz/support/target.hpp"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  veq::fuzz::silenceTheLog();
  veq::fuzz::checkReading(veq::fuzz::textOf(data, size), veq::FileFormat::kMatrixMarket);
  return 0;
}
