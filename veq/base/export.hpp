/// \file
/// Marks on declarations: what a shared library shows, and what lives no longer than its object.
#pragma once

#include "veq/base/requirements.hpp"

/// Marks what users of the library may link with. The library is built with everything else hidden.
#if defined(__GNUC__)
#define VEQ_EXPORT __attribute__((visibility("default")))
#else
#define VEQ_EXPORT
#endif

/// Marks a member function whose result refers into the object. A compiler that knows the mark
/// warns where a temporary object dies before the result is used, as far as it can see.
#if defined(__has_cpp_attribute)
#if __has_cpp_attribute(clang::lifetimebound)
#define VEQ_LIFETIME_BOUND [[clang::lifetimebound]]
#endif
#endif
#if !defined(VEQ_LIFETIME_BOUND)
#define VEQ_LIFETIME_BOUND
#endif
