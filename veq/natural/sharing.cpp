#include "veq/natural/sharing.hpp"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "veq/base/internal/memory_file.hpp"
#include "veq/natural/internal/complaints.hpp"
#include "veq/natural/internal/making.hpp"
#include "veq/natural/internal/network_image.hpp"

namespace veq {

using internal::argumentError;
using internal::ImageReader;
using internal::ImageWriter;
using internal::NetworkCore;
using internal::Pace;

namespace {

// The first section.
struct ImageHead {
  static constexpr std::uint64_t kMark = 0x56455120696D6167;
  static constexpr std::uint64_t kRelease = 1;
  static constexpr std::uint64_t kDirected = 1;
  static constexpr std::uint64_t kNarrow = 2;
  static constexpr std::uint64_t kVertexWeights = 4;
  static constexpr std::uint64_t kEdgeWeights = 8;

  std::uint64_t mark = kMark;  // Other bytes on a machine of the other byte order.
  std::uint64_t release = kRelease;
  std::uint64_t size = 0;
  std::uint64_t flags = 0;
  std::uint64_t vertices = 0;
  std::uint64_t edges = 0;
  std::uint64_t vertexColumns = 0;
  std::uint64_t edgeColumns = 0;
};

// Copies from one section to the next, with a look at the pace now and then.
template <class T>
void writeSection(ImageWriter& image, std::span<const T> values, Pace& pace) {
  constexpr std::size_t kTile = std::size_t{1} << 20;
  T* to = image.section<T>(values.size());
  if (!to) return;
  for (; !values.empty(); pace.reach(image.size())) {
    const auto tile = values.first(std::min(kTile, values.size()));
    to = std::copy(tile.begin(), tile.end(), to);
    values = values.subspan(tile.size());
  }
}

template <class Index>
void writeLists(ImageWriter& image, const AdjacencyRows<Index>& lists, std::uint64_t vertices,
                std::uint64_t entries, Pace& pace) {
  constexpr std::uint64_t kTile = std::uint64_t{1} << 16;
  auto* const rows = image.section<AdjacencyRow<Index>>(vertices);
  auto* const neighbours = image.section<Index>(entries);
  auto* const edges = image.section<Index>(entries);
  Index next = 0;
  std::uint64_t nextLook = kTile;
  for (std::uint64_t v = 0; rows && v < vertices; ++v) {
    rows[v] = {next, static_cast<Index>(lists.count(v))};
    const auto to = lists.neighbours(v);
    const auto of = lists.edges(v);
    std::copy(to.begin(), to.end(), neighbours + next);
    std::copy(of.begin(), of.end(), edges + next);
    next += rows[v].count;
    if (v + next < nextLook) continue;
    pace.reach(image.size());
    nextLook = v + next + kTile;
  }
}

std::uint64_t flagsOf(const TopologyView& topology, const NetworkCore& core) {
  return (topology.isDirected() ? ImageHead::kDirected : 0) |
         (topology.indexBytes() == 4 ? ImageHead::kNarrow : 0) |
         (core.verticesWeights ? ImageHead::kVertexWeights : 0) |
         (core.edgesWeights ? ImageHead::kEdgeWeights : 0);
}

// The order in which networkIn() reads.
std::optional<Error> writeNetwork(ImageWriter& image, const Network& network, std::uint64_t size,
                                  Pace& pace) {
  const NetworkCore& core = internal::CoreAccess::of(*network.published());
  const TopologyView topology = network.topology();
  const std::uint64_t n = topology.countVertices();
  const std::uint64_t m = topology.countEdges();
  ImageHead head;
  head.size = size;
  head.flags = flagsOf(topology, core);
  head.vertices = n;
  head.edges = m;
  head.vertexColumns = core.properties->vertices.size();
  head.edgeColumns = core.properties->edges.size();
  if (auto* to = image.section<ImageHead>(1)) *to = head;
  topology.visit([&](const auto& arrays) {
    writeSection(image, arrays.from, pace);
    writeSection(image, arrays.to, pace);
    writeLists(image, arrays.out, n, topology.isDirected() ? m : 2 * m, pace);
    if (topology.isDirected()) writeLists(image, arrays.in, n, m, pace);
  });
  if (core.verticesWeights) writeSection(image, core.verticesWeights->all(), pace);
  if (core.edgesWeights) writeSection(image, core.edgesWeights->all(), pace);
  if (auto error = internal::writeColumns(image, core.properties->vertices)) return error;
  return internal::writeColumns(image, core.properties->edges);
}

template <class Index>
ListMemory<Index> listsIn(ImageReader& image, std::uint64_t vertices, std::uint64_t entries) {
  ListMemory<Index> lists;
  lists.rows = image.section<AdjacencyRow<Index>>(vertices);
  lists.neighbours = image.section<Index>(entries);
  lists.edges = image.section<Index>(entries);
  return lists;
}

template <class Index>
Result<Network> networkIn(ImageReader& image, const ImageHead& head,
                          const Shared<const void>& owner, const AttachOptions& attach) {
  TopologyMemory<Index> memory;
  memory.directed = (head.flags & ImageHead::kDirected) != 0;
  memory.from = image.section<Index>(head.edges);
  memory.to = image.section<Index>(head.edges);
  memory.out = listsIn<Index>(image, head.vertices, memory.directed ? head.edges : 2 * head.edges);
  if (memory.directed) memory.in = listsIn<Index>(image, head.vertices, head.edges);
  OverOptions options;
  options.trusted = attach.trusted;
  options.progress = attach.progress;
  if (head.flags & ImageHead::kVertexWeights) {
    options.vertexWeights = image.section<float>(head.vertices);
  }
  if (head.flags & ImageHead::kEdgeWeights) options.edgeWeights = image.section<float>(head.edges);
  options.vertexColumns = internal::readColumns(image, head.vertexColumns, owner);
  options.edgeColumns = internal::readColumns(image, head.edgeColumns, owner);
  return Network::over(memory, owner, options);
}

Error formatError(const char* text) { return {ErrorKind::kFormat, text}; }

}  // namespace

Result<std::uint64_t> imageSize(const Network& network) {
  const Progress unwatched;
  Pace pace(unwatched, 0);
  ImageWriter image(nullptr);
  if (auto error = writeNetwork(image, network, 0, pace)) return *error;
  return image.size();
}

Outcome writeImage(const Network& network, std::span<std::byte> memory, const Progress& progress) {
  return internal::untilStopped([&]() -> Outcome {
    const Result<std::uint64_t> size = imageSize(network);
    if (!size) return size.error();
    if (memory.size() < size.value()) {
      return argumentError(std::to_string(memory.size()) + " bytes for an image of " +
                           std::to_string(size.value()));
    }
    Pace pace(progress, size.value());
    pace.reach(0);
    ImageWriter image(memory.data());
    if (auto error = writeNetwork(image, network, size.value(), pace)) return *error;
    return std::monostate();
  });
}

Result<Network> attachImage(std::span<const std::byte> image, Shared<const void> owner,
                            const AttachOptions& options) {
  ImageHead head;
  if (image.size() < sizeof(head)) return formatError("not the image of a network");
  std::memcpy(&head, image.data(), sizeof(head));
  if (head.mark != ImageHead::kMark) return formatError("not the image of a network");
  if (head.release != ImageHead::kRelease) return formatError("an image of another release");
  if (reinterpret_cast<std::uintptr_t>(image.data()) % alignof(ImageHead) != 0) {
    return argumentError("an image that is not aligned to 8 bytes");
  }
  try {
    if (head.size > image.size() || head.edges > head.size) throw internal::DamagedImage{};
    ImageReader reader(image.first(static_cast<std::size_t>(head.size)));
    static_cast<void>(reader.section<ImageHead>(1));
    return head.flags & ImageHead::kNarrow ? networkIn<std::uint32_t>(reader, head, owner, options)
                                           : networkIn<std::uint64_t>(reader, head, owner, options);
  } catch (const internal::DamagedImage&) {
    return formatError("a damaged image");
  }
}

Result<SharedNetwork> SharedNetwork::of(const Network& network, const Progress& progress) {
  const Result<std::uint64_t> size = imageSize(network);
  if (!size) return size.error();
  auto file = internal::MemoryFile::written(size.value(), [&](std::span<std::byte> memory) {
    return writeImage(network, memory, progress);
  });
  if (!file) return file.error();
  return SharedNetwork(std::move(file.value()));
}

int SharedNetwork::descriptor() const { return file_->descriptor(); }

std::uint64_t SharedNetwork::bytes() const { return file_->size(); }

Result<Network> attachNetwork(int descriptor, const AttachOptions& options) {
  const auto mapped = internal::MemoryFile::map(descriptor);
  if (!mapped) return mapped.error();
  return attachImage(mapped->bytes, mapped->owner, options);
}

}  // namespace veq
