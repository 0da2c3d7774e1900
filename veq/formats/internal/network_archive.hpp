/// \file
/// The archive that keeps everything, and reading archives of either version, as
/// docs/formats/archive.md describes them.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "veq/base/result.hpp"
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

/// What is wrong with an archive: an Error of kind kFormat that knows the entry.
class ArchiveError : public Error {
 public:
  ArchiveError(std::string text, std::string_view key)
      : Error(ErrorKind::kFormat, std::move(text)), key_(key) {}

  /// Empty where it is the archive as a whole. A key lives as long as the program.
  [[nodiscard]] std::string_view key() const { return key_; }

 private:
  std::string_view key_;
};

/// Where the entry is, or, where that is empty, how far the bytes are an archive. There is one
/// line, and its columns are bytes.
[[nodiscard]] Place placeInArchive(std::string_view bytes, std::string_view key);

/// What the archive holds; throws an ArchiveError for anything but a whole one. Published
/// archives are taken by what was written into them: the weights by the flags that name them, and
/// as many vertices as there are weights of vertices.
[[nodiscard]] NetworkDraft draftOfArchive(VEQKeyedUnarchiver& archive, ArchivedEnds& ends);

}  // namespace veq::internal
