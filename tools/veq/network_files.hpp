/// \file
/// Networks in files whose suffix names the format.
#pragma once

#include <string>
#include <string_view>

#include <veq/veq.hpp>

namespace veq::tool {

enum class Format { kXnet, kArchive, kPajek, kEdgeList };

/// By suffix, in any case: .veqa archives, .net Pajek, .edges and .txt edge lists, all others xnet.
[[nodiscard]] Format formatOf(std::string_view file);

/// Reads a network; a Failure says why that cannot be done. Only edge lists heed the direction, as
/// all other formats have their own.
[[nodiscard]] Shared<VEQNetwork> loadNetwork(const std::string& file, bool directed = false);

/// Writes a network atomically, and says on standard error what the format does not keep. Failure,
/// and nothing is written, where the file could not be read back or cannot be written.
void saveNetwork(const VEQNetwork& network, const std::string& file);

/// Says on standard error what people should know about a file.
void note(const std::string& file, std::string_view text);

/// Failure where the file cannot possibly be written, so that nobody computes for an hour in vain.
void requireWritable(const std::string& file);

/// "34 vertices, 78 edges, undirected".
[[nodiscard]] std::string sizeText(const VEQNetwork& network);

/// The name of a vertex; its index where it has none.
[[nodiscard]] std::string vertexName(const VEQNetwork& network, std::uint64_t index);

}  // namespace veq::tool
