/// \file
/// Writing networks to files, in the natural form.
#pragma once

#include "veq/formats/writing.hpp"
