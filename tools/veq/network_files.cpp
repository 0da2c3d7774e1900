#include "network_files.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <system_error>
#include <vector>

#include "edge_list.hpp"
#include "failure.hpp"
#include "losses.hpp"
#include "text.hpp"

namespace veq::tool {
namespace {

namespace fs = std::filesystem;

std::string_view kindOf(Format format) {
  switch (format) {
    case Format::kXnet:
      return "xnet network";
    case Format::kArchive:
      return "archive";
    case Format::kPajek:
      return "Pajek network";
    case Format::kEdgeList:
      return "edge list";
  }
  return "network";
}

/// The bytes of a file; Failure where it cannot be read.
std::string contentsOf(const std::string& file) {
  std::error_code ignored;
  if (fs::is_directory(file, ignored)) throw Failure(file, "is a directory");
  std::ifstream stream(file, std::ios::binary);
  if (!stream) throw Failure(file, "cannot be opened");
  std::string bytes((std::istreambuf_iterator<char>(stream)), {});
  if (stream.bad()) throw Failure(file, "cannot be read");
  return bytes;
}

/// Why the library made no network of the file, as far as can be seen from here.
[[noreturn]] void failToLoad(const std::string& file, Format format) {
  std::error_code ignored;
  // A pipe cannot be read twice.
  const bool readable = !fs::exists(file, ignored) || fs::is_regular_file(file, ignored) ||
                        fs::is_directory(file, ignored);
  if (readable) {
    const std::string bytes = contentsOf(file);
    if (format == Format::kXnet && !isUtf8(bytes)) throw Failure(file, "not UTF-8");
  }
  throw Failure(file, "not a valid " + std::string(kindOf(format)));
}

Shared<VEQNetwork> loadEdgeList(const std::string& file, bool directed) {
  std::vector<std::string> notes;
  Shared<VEQNetwork> network = networkWithEdgeList(file, contentsOf(file), directed, notes);
  for (const std::string& text : notes) note(file, text);
  return network;
}

bool write(const VEQNetwork& network, const std::string& file) {
  switch (formatOf(file)) {
    case Format::kXnet:
      return network.writeToFile_atomically(file, true);
    case Format::kArchive:
      return writeArchiveToFile(network, file, true);
    case Format::kPajek:
      return network.writeToPajekFile_atomically(file, true);
    case Format::kEdgeList:
      return network.writeToEdgesFile_atomically(file, true);
  }
  return false;
}

}  // namespace

Format formatOf(std::string_view file) {
  std::string suffix = fs::path(file).extension().string();
  std::transform(suffix.begin(), suffix.end(), suffix.begin(), [](char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                : character;
  });
  if (suffix == ".veqa") return Format::kArchive;
  if (suffix == ".net") return Format::kPajek;
  if (suffix == ".edges" || suffix == ".txt") return Format::kEdgeList;
  return Format::kXnet;
}

Shared<VEQNetwork> loadNetwork(const std::string& file, bool directed) {
  const Format format = formatOf(file);
  if (format == Format::kEdgeList) return loadEdgeList(file, directed);
  Shared<VEQNetwork> network;
  if (format == Format::kXnet) network = VEQNetwork::networkWithContentsOfFile(file);
  if (format == Format::kArchive) network = networkWithArchiveFile(file);
  if (format == Format::kPajek) network = VEQNetwork::networkWithContentsOfPajekFile(file);
  if (!network) failToLoad(file, format);
  return network;
}

void saveNetwork(const VEQNetwork& network, const std::string& file) {
  requireWritable(file);
  const Losses losses = lossesOf(network, formatOf(file));
  if (losses.isTotal()) {
    throw Failure(file, "not written, because " + losses.total);
  }
  if (!write(network, file)) throw Failure(file, "cannot be written");
  for (const std::string& text : losses.notes) note(file, text);
}

void note(const std::string& file, std::string_view text) {
  std::cerr << "veq: " << printable(file) << ": " << printable(text) << '\n';
}

void requireWritable(const std::string& file) {
  const Outcome writable = checkWritable(file);
  if (!writable) throw Failure(file, writable.error().text());
}

std::string sizeText(const VEQNetwork& network) {
  return counted(network.countVertices(), "vertex", "vertices") + ", " +
         counted(network.countEdges(), "edge", "edges") + ", " +
         (network.isDirected() ? "directed" : "undirected");
}

std::string vertexName(const VEQNetwork& network, std::uint64_t index) {
  const auto* names = network.propertiesOfVertices()->find("Name");
  if (names && index < (*names)->count()) {
    const PropertyValue name = (*names)->objectAtIndex(index);
    if (!name.isNull()) return name.text();
  }
  return std::to_string(index);
}

}  // namespace veq::tool
