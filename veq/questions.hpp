/// \file
/// What one asks of a network on the first day, subject by subject, and of walks on it.
#pragma once

#include "veq/questions/clustering.hpp"
#include "veq/questions/components.hpp"
#include "veq/questions/cores.hpp"
#include "veq/questions/degrees.hpp"
#include "veq/questions/distances.hpp"
#include "veq/questions/page_rank.hpp"
#include "veq/questions/walk_law.hpp"
