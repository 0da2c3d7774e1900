/// \file
/// Random numbers: the process's sequence, and places in such a sequence as values.
#pragma once

#include "veq/models/random_generator.hpp"
#include "veq/models/random_state.hpp"
