/// \file
/// The archive that keeps everything, and reading archives of either version, as
/// docs/formats/archive.md describes them.
#pragma once

#include "veq/formats/keyed_archiver.hpp"
#include "veq/network/internal/network_core.hpp"
#include "veq/network/internal/network_draft.hpp"

namespace veq::internal {

/// Throws std::invalid_argument where a column holds an object without an archived form.
void writeArchive(const NetworkCore& core, VEQKeyedArchiver& out);

/// What lists of ends are decoded into. A draft borrows them.
struct ArchivedEnds {
  Owned<VEQNumberArray> from;
  Owned<VEQNumberArray> to;
};

/// Whether it has a version, as published archives have none.
[[nodiscard]] bool hasVersion(const VEQKeyedUnarchiver& archive);

/// What the archive holds; throws an Error of kind kFormat for anything but a whole one. Published
/// archives are taken by what was written into them: the weights by the flags that name them, and
/// as many vertices as there are weights of vertices.
[[nodiscard]] NetworkDraft draftOfArchive(VEQKeyedUnarchiver& archive, ArchivedEnds& ends);

}  // namespace veq::internal
