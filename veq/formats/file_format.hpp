/// \file
/// The formats of files, and their names.
#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "veq/base/export.hpp"

namespace veq {

/// The formats of files that hold networks.
/// \ingroup files
enum class FileFormat {
  kXnet,
  kPajek,
  kList,  ///< A list of edges: columns between blanks, tabs, commas or semicolons.
  kMatrixMarket,
  kGml,
  kGraphMl,
  kArchive,
  kCsv,  ///< As written; what is read is a kList.
};

/// "xnet", "pajek", "list", "matrix-market", "gml", "graphml", "archive", "csv".
/// \ingroup files
[[nodiscard]] VEQ_EXPORT std::string_view nameOf(FileFormat format);
/// The format of this name; nothing for another word.
/// \ingroup files
[[nodiscard]] VEQ_EXPORT std::optional<FileFormat> fileFormatNamed(std::string_view name);
/// The format that goes with the suffix of a file's name, in any case: ".xnet"; ".net", ".paj";
/// ".txt", ".edges", ".edgelist", ".el", ".ncol", ".tsv"; ".csv"; ".mtx"; ".gml"; ".graphml";
/// ".veqa". Nothing for other names.
/// \ingroup files
[[nodiscard]] VEQ_EXPORT std::optional<FileFormat> fileFormatOfSuffix(std::string_view name);
/// The usual one of its suffixes: ".xnet", ".net", ".edges", ".mtx", ".gml", ".graphml", ".veqa",
/// ".csv". Empty, as nameOf() is, for a number that is no format.
/// \ingroup files
[[nodiscard]] VEQ_EXPORT std::string_view suffixOf(FileFormat format);
/// All formats, in the order of the enumeration.
/// \ingroup files
[[nodiscard]] VEQ_EXPORT std::span<const FileFormat> fileFormats();

}  // namespace veq
