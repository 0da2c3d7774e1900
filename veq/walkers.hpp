/// \file
/// Walking at random, in the natural form.
#pragma once

#include "veq/agents/walk_record.hpp"
#include "veq/agents/walkers.hpp"
