/// \file
/// The reader of networks that the program was built with.
#pragma once

#include <veq/veq.hpp>

#ifdef VEQ_WITH_READERS
#include <veq/readers/reading.hpp>
#endif

namespace veq::tool {

// The second library reads GraphML and compressed files, too.
#ifdef VEQ_WITH_READERS
namespace reader = veq::readers;
#else
namespace reader = veq;
#endif

}  // namespace veq::tool
