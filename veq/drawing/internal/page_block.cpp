#include "veq/drawing/internal/page_block.hpp"

#include <utility>

#include "veq/base/internal/number_text.hpp"
#include "veq/drawing/internal/byte_writer.hpp"
#include "veq/drawing/internal/checksum.hpp"
#include "veq/drawing/internal/page_template.hpp"
#include "veq/drawing/internal/page_texts.hpp"
#include "veq/drawing/internal/page_walk.hpp"
#include "veq/natural/internal/core_of.hpp"
#include "veq/network/internal/property_columns.hpp"

namespace veq::internal {
namespace {

enum Tag : std::uint8_t {
  kMeta = 1,
  kEdges = 2,
  kPositions = 3,
  kNames = 4,
  kColumn = 5,
  kWalk = 6,
  kMoves = 7,
  kWeights = 8,
  kArrivals = 9,
  kMemories = 10,
  kCheck = 127
};

std::string roleText(const std::optional<PageRole>& role) {
  if (!role) return "null";
  if (!role->word.empty()) return "{\"by\":\"" + std::string(role->word) + "\"}";
  return "{\"by\":\"column\",\"column\":" + std::to_string(role->column) + "}";
}

std::string columnsText(const std::vector<PageColumn>& columns) {
  std::string text = "[";
  for (const PageColumn& column : columns) {
    if (text.size() > 1) text += ',';
    text += "{\"key\":";
    appendJsonText(text, column.key);
    text += column.isNumber ? ",\"kind\":\"number\"}" : ",\"kind\":\"text\"}";
  }
  return text + "]";
}

std::string numberOrNull(const std::optional<std::uint64_t>& number) {
  return number ? std::to_string(*number) : "null";
}

// One for all where all are alike, as the shortest decimals of floats, which they came from.
std::string errorsText(const RecordedWalk& walk) {
  std::string text = "[";
  bool alike = true;
  for (const RecordedMemory& memory : walk.memories) {
    alike = alike && memory.errorThreshold == walk.memories[0].errorThreshold;
  }
  for (const RecordedMemory& memory : walk.memories) {
    if (text.size() > 1) text += ',';
    appendShortest(text, static_cast<float>(memory.errorThreshold * 0x1p-31));
    if (alike) break;
  }
  return text + "]";
}

std::string walkText(const PageContent& content) {
  std::string text = "{\"seed\":" + numberOrNull(content.seed) +
                     ",\"substream\":" + numberOrNull(content.substream) + ",\"starts\":";
  appendJsonText(text, content.starts);
  text += ",\"restart\":";
  appendShortest(text, content.walk->restartThreshold * 0x1p-31);
  return text + ",\"errors\":" + errorsText(*content.walk) + "}";
}

std::string metaText(const PageContent& content) {
  const Network& network = content.network;
  std::string text = "{\"title\":";
  appendJsonText(text, content.title);
  text += ",\"veq\":";
  appendJsonText(text, libraryVersion());
  text += ",\"n\":" + std::to_string(network.countVertices());
  text += ",\"m\":" + std::to_string(network.countEdges());
  text += network.isDirected() ? ",\"directed\":true" : ",\"directed\":false";
  text += network.isEdgeWeighted() ? ",\"edgeWeighted\":true" : ",\"edgeWeighted\":false";
  text += ",\"call\":";
  appendJsonText(text, content.call);
  text += ",\"layout\":";
  appendJsonText(text, content.layout);
  text += ",\"columns\":" + columnsText(content.columns);
  text += ",\"color\":" + roleText(content.color);
  text += ",\"size\":" + roleText(content.size);
  if (content.walk) text += ",\"walk\":" + walkText(content);
  return text + "}";
}

ByteWriter meta(const PageContent& content) {
  ByteWriter out;
  out.raw(metaText(content));
  return out;
}

ByteWriter edges(const Network& network) {
  const std::vector<std::uint64_t> sources = network.sources();
  ByteWriter out;
  std::uint64_t before = 0;
  for (const std::uint64_t source : sources) out.difference(source, std::exchange(before, source));
  for (const std::uint64_t target : network.targets()) out.varint(target);
  return out;
}

ByteWriter positions(const std::vector<PagePoint>& points) {
  ByteWriter out;
  for (const PagePoint& point : points) {
    out.u16(point.x);
    out.u16(point.y);
  }
  return out;
}

ByteWriter names(const PropertyColumn& column, std::uint64_t n) {
  ByteWriter out;
  for (std::uint64_t v = 0; v < n; ++v) {
    const PropertyValue name = valueOrNull(column, v);
    out.text(name.isNull() ? std::to_string(v) : asUtf8(name.text()));
  }
  return out;
}

ByteWriter weights(const Network& network) {
  ByteWriter out;
  for (const float weight : network.edgeWeights()) out.f32(weight);
  return out;
}

ByteWriter arrivals(const RecordedWalk& walk) {
  ByteWriter out;
  for (const std::uint64_t count : walk.arrivals) out.varint(count);
  return out;
}

Error tooMany(std::uint64_t count, const char* what, std::uint64_t most, const char* advice) {
  return {ErrorKind::kArgument, std::to_string(count) + " " + what +
                                    " are more than a page can draw (" + std::to_string(most) +
                                    "): " + advice};
}

std::optional<Error> walkError(const Network& network, const RecordedWalk& walk) {
  if (walk.vertices != network.countVertices() || walk.edges != network.countEdges()) {
    return Error(ErrorKind::kArgument, "the walk was on a network of " +
                                           std::to_string(walk.vertices) + " vertices and " +
                                           std::to_string(walk.edges) + " edges");
  }
  const std::uint64_t agents = walk.countAgents();
  if (agents == 0) return Error(ErrorKind::kArgument, "nobody walked");
  if (agents > kMostPageAgents) {
    return tooMany(agents, "agents", kMostPageAgents, "let fewer walk");
  }
  if (walk.outcome.steps >= (std::uint64_t{1} << 53) / agents) {
    return Error(ErrorKind::kArgument,
                 "the walk has 2^53 moves or more, which a page cannot count: take fewer steps");
  }
  std::uint64_t slots = 0;
  std::uint64_t links = 0;
  for (const RecordedMemory& memory : walk.memories) {
    slots += memory.ring.size();
    links += memory.listeners.size();
  }
  if (links > kMostPageEdges) {
    return tooMany(links, "links between agents", kMostPageEdges, "let fewer walk");
  }
  if (slots > kMostPageSlots) {
    return Error(ErrorKind::kArgument, "agents that remember " + std::to_string(slots) +
                                           " places from before are more than a page can hold (" +
                                           std::to_string(kMostPageSlots) +
                                           "): record their first walk");
  }
  return std::nullopt;
}

}  // namespace

std::optional<Error> pageError(const Network& network, const RecordedWalk* walk) {
  if (const std::uint64_t n = network.countVertices(); n > kMostPageVertices) {
    return tooMany(n, "vertices", kMostPageVertices, "choose some, as a component");
  }
  if (const std::uint64_t m = network.countEdges(); m > kMostPageEdges) {
    return tooMany(m, "edges", kMostPageEdges, "choose some, as a component");
  }
  return walk ? walkError(network, *walk) : std::nullopt;
}

Result<std::string> pageBlock(const PageContent& content) {
  const Network& network = content.network;
  const RecordedWalk* const walk = content.walk;
  ByteWriter block;
  block.raw("VEQP");
  block.u8(1);
  block.section(kMeta, meta(content));
  block.section(kEdges, edges(network));
  block.section(kPositions, positions(content.points));
  Shared<const PropertyColumn> named = network.vertexColumn("Name");
  if (!named) named = network.vertexColumn("Id");
  if (named) block.section(kNames, names(*named, network.countVertices()));
  for (const PageColumn& column : content.columns) {
    ByteWriter bytes;
    bytes.raw(columnBytes(column));
    block.section(kColumn, bytes);
  }
  if (walk) {
    block.section(kWalk, walkPart(*walk));
    if (!walk->memories.empty()) {
      ByteWriter moves = movesPart(network, *walk);
      if (moves.bytes().size() > kMostPageMoveBytes) {
        return Error(ErrorKind::kArgument, "the moves of agents with memory take " +
                                               std::to_string(moves.bytes().size()) +
                                               " bytes, more than a page can hold (" +
                                               std::to_string(kMostPageMoveBytes) +
                                               "): take fewer steps or agents");
      }
      block.section(kMoves, moves);
    }
  }
  if (network.isEdgeWeighted()) block.section(kWeights, weights(network));
  if (walk) block.section(kArrivals, arrivals(*walk));
  if (walk && !walk->memories.empty()) block.section(kMemories, memoriesPart(*walk));
  Crc32 check;
  check.add(block.bytes());
  ByteWriter sum;
  sum.u32(check.value());
  block.section(kCheck, sum);
  return block.take();
}

}  // namespace veq::internal
