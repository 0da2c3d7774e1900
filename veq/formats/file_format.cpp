#include "veq/formats/file_format.hpp"

#include <array>

#include "veq/formats/internal/lines.hpp"

namespace veq {

namespace {

struct FormatWord {
  std::string_view word;
  FileFormat format;
};

constexpr std::array<FormatWord, 8> kNames{{{"xnet", FileFormat::kXnet},
                                            {"pajek", FileFormat::kPajek},
                                            {"list", FileFormat::kList},
                                            {"matrix-market", FileFormat::kMatrixMarket},
                                            {"gml", FileFormat::kGml},
                                            {"graphml", FileFormat::kGraphMl},
                                            {"archive", FileFormat::kArchive},
                                            {"csv", FileFormat::kCsv}}};

constexpr std::array<FormatWord, 14> kSuffixes{{{"xnet", FileFormat::kXnet},
                                                {"net", FileFormat::kPajek},
                                                {"paj", FileFormat::kPajek},
                                                {"txt", FileFormat::kList},
                                                {"edges", FileFormat::kList},
                                                {"edgelist", FileFormat::kList},
                                                {"el", FileFormat::kList},
                                                {"ncol", FileFormat::kList},
                                                {"csv", FileFormat::kCsv},
                                                {"tsv", FileFormat::kList},
                                                {"mtx", FileFormat::kMatrixMarket},
                                                {"gml", FileFormat::kGml},
                                                {"graphml", FileFormat::kGraphMl},
                                                {"veqa", FileFormat::kArchive}}};

}  // namespace

std::string_view nameOf(FileFormat format) {
  for (const FormatWord& each : kNames) {
    if (each.format == format) return each.word;
  }
  return "";
}

std::optional<FileFormat> fileFormatNamed(std::string_view name) {
  for (const FormatWord& each : kNames) {
    if (each.word == name) return each.format;
  }
  return std::nullopt;
}

std::optional<FileFormat> fileFormatOfSuffix(std::string_view name) {
  const std::size_t point = name.rfind('.');
  if (point == name.npos) return std::nullopt;
  for (const FormatWord& each : kSuffixes) {
    if (internal::sameWord(name.substr(point + 1), each.word)) return each.format;
  }
  return std::nullopt;
}

}  // namespace veq
