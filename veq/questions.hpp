/// \file
/// Questions to networks.
#pragma once

#include "veq/questions/walk_law.hpp"
