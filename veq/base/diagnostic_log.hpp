/// \file
/// The one place to which the library writes by itself: a process-wide log of lines.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "veq/base/export.hpp"

namespace veq {

/// Receives one line of the diagnostic log, without a line end.
/// \ingroup process
using DiagnosticSink = std::function<void(std::string_view)>;

/// Replaces the sink and returns the one that was there; an empty sink silences the log. Until the
/// first call lines go to standard error. May be called from any thread; a line that another thread
/// is writing meanwhile may still reach the old sink.
/// \ingroup process
VEQ_EXPORT DiagnosticSink setDiagnosticSink(DiagnosticSink sink);

/// Whether anything listens, so that a caller need not format a line for nobody.
/// \ingroup process
[[nodiscard]] VEQ_EXPORT bool diagnosticLogListens();

/// Writes one line. May be called from any thread.
/// \ingroup process
VEQ_EXPORT void logDiagnostic(std::string_view line);

}  // namespace veq
