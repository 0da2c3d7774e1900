#include "veq/formats/file_format.hpp"

#include <array>
#include <cstddef>

#include "veq/formats/internal/lines.hpp"

namespace veq {

namespace {

struct FormatNames {
  FileFormat format;
  std::string_view name;
  std::array<std::string_view, 6> suffixes;  // The usual one first, empty behind the last.
};

// Each format at the place that its number says.
constexpr std::array<FormatNames, 8> kFormats{
    {{FileFormat::kXnet, "xnet", {".xnet"}},
     {FileFormat::kPajek, "pajek", {".net", ".paj"}},
     {FileFormat::kList, "list", {".edges", ".edgelist", ".el", ".ncol", ".tsv", ".txt"}},
     {FileFormat::kMatrixMarket, "matrix-market", {".mtx"}},
     {FileFormat::kGml, "gml", {".gml"}},
     {FileFormat::kGraphMl, "graphml", {".graphml"}},
     {FileFormat::kArchive, "archive", {".veqa"}},
     {FileFormat::kCsv, "csv", {".csv"}}}};

constexpr auto kAll = [] {
  std::array<FileFormat, kFormats.size()> all{};
  for (std::size_t i = 0; i < all.size(); ++i) all[i] = kFormats[i].format;
  return all;
}();

constexpr bool isInOrder() {
  for (std::size_t i = 0; i < kAll.size(); ++i) {
    if (static_cast<std::size_t>(kAll[i]) != i) return false;
  }
  return true;
}
static_assert(isInOrder());

const FormatNames* namesOf(FileFormat format) {
  const auto place = static_cast<std::size_t>(format);
  return place < kFormats.size() ? &kFormats[place] : nullptr;
}

}  // namespace

std::string_view nameOf(FileFormat format) {
  const FormatNames* const names = namesOf(format);
  return names ? names->name : std::string_view();
}

std::optional<FileFormat> fileFormatNamed(std::string_view name) {
  for (const FormatNames& each : kFormats) {
    if (each.name == name) return each.format;
  }
  return std::nullopt;
}

std::optional<FileFormat> fileFormatOfSuffix(std::string_view name) {
  const std::size_t point = name.rfind('.');
  if (point == name.npos) return std::nullopt;
  for (const FormatNames& each : kFormats) {
    for (const std::string_view suffix : each.suffixes) {
      if (internal::sameWord(name.substr(point), suffix)) return each.format;
    }
  }
  return std::nullopt;
}

std::string_view suffixOf(FileFormat format) {
  const FormatNames* const names = namesOf(format);
  return names ? names->suffixes.front() : std::string_view();
}

std::span<const FileFormat> fileFormats() { return kAll; }

}  // namespace veq
