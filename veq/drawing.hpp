/// \file
/// Drawing networks: layouts, and pages that show a network and replay a walk.
#pragma once

#include "veq/drawing/layout.hpp"
#include "veq/drawing/page.hpp"
#include "veq/drawing/picture.hpp"
