#pragma once

#include <cstddef>
#include <cstdint>

#include "veq/base/diagnostic_log.hpp"

/// What a target defines: both the fuzzer and the replay program call it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace veq::fuzz {

/// Nobody reads what the library logs about millions of inputs.
inline void silenceTheLog() {
  static const bool silenced = (setDiagnosticSink({}), true);
  static_cast<void>(silenced);
}

}  // namespace veq::fuzz
