// Walks when it is unloaded, too.
#include "tests/endings/walk.hpp"

namespace {
const WalksAtItsEnd walksWhenUnloaded;
}
