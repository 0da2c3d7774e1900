/// \file
/// Reading networks from files, in the natural form.
#pragma once

#include "veq/formats/reading.hpp"
#include "veq/formats/walk_reading.hpp"
