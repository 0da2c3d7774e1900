/// \file
/// Reading networks from files, in the natural form.
#pragma once

#include "veq/formats/reading.hpp"
