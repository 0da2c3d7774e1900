/// \file
/// What a shared library shows of itself.
#pragma once

#include "veq/base/requirements.hpp"

/// Marks what users of the library may link with. The library is built with everything else hidden.
#if defined(__GNUC__)
#define VEQ_EXPORT __attribute__((visibility("default")))
#else
#define VEQ_EXPORT
#endif
