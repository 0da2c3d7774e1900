/// \file
/// The network as a value: building it, edge by edge or all at once, asking for its parts, and
/// making new networks of it.
#pragma once

#include "veq/natural/network.hpp"
#include "veq/natural/network_builder.hpp"
