/// \file
/// Model networks.
#pragma once

#include "veq/models/model_networks.hpp"
#include "veq/random.hpp"
