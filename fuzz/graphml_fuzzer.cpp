// The bytes of a GraphML file.
#include "fuzz/support/input.hpp"
#include "fuzz/support/readings.hpp"
#include "fuzz/support/target.hpp"
#include "veq/base/encodings.hpp"
#include "veq/readers/internal/reading_stream.hpp"
#include "veq/readers/reading.hpp"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  veq::fuzz::silenceTheLog();
  const std::string_view bytes = veq::fuzz::textOf(data, size);
  veq::fuzz::checkReading(bytes, veq::readers::readNetworkText, veq::FileFormat::kGraphMl);
  // What is not UTF-8 is seen piece by piece.
  if (!veq::isUtf8(bytes)) return 0;
  veq::fuzz::checkPieces(bytes, veq::readers::readStream, veq::FileFormat::kGraphMl);
  return 0;
}
