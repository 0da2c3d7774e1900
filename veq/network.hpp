/// \file
/// The network as a value: building it, edge by edge or all at once, asking for its parts, and
/// making new networks of it, and sharing it with other processes.
#pragma once

#include "veq/natural/network.hpp"
#include "veq/natural/network_builder.hpp"
#include "veq/natural/sharing.hpp"
#include "veq/natural/walk_network.hpp"
