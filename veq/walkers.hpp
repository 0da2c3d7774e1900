/// \file
/// Walking at random, in the natural form.
#pragma once

#include "veq/agents/walkers.hpp"
