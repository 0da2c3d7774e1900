/// \file
/// Writers of formats that other programs read. Each throws what TextOutput throws.
#pragma once

#include "veq/formats/internal/text_output.hpp"
#include "veq/network/internal/network_core.hpp"

namespace veq::internal {

void writeGraphMl(const NetworkCore& core, TextOutput& out);
void writeGml(const NetworkCore& core, TextOutput& out);
void writeMatrixMarket(const NetworkCore& core, TextOutput& out);
void writeEdgeTable(const NetworkCore& core, TextOutput& out);
void writeVertexTable(const NetworkCore& core, TextOutput& out);

}  // namespace veq::internal
