/// \file
/// What the entries of archives are called.
#pragma once

#include <string_view>

namespace veq::internal {

/// Those of published archives.
namespace archive1 {
inline constexpr std::string_view kDirected = "VEQ.xnet.directed";
inline constexpr std::string_view kEdgeWeighted = "VEQ.xnet.edgeWeighted";
inline constexpr std::string_view kVertexWeighted = "VEQ.xnet.vertexWeighted";
inline constexpr std::string_view kEdgesProperties = "VEQ.xnet.edgesProperties";
inline constexpr std::string_view kVerticesProperties = "VEQ.xnet.verticesProperties";
inline constexpr std::string_view kFromList = "VEQ.xnet.fromList";
inline constexpr std::string_view kToList = "VEQ.xnet.toList";
inline constexpr std::string_view kVerticesWeights = "VEQ.xnet.verticesWeights";
inline constexpr std::string_view kEdgesWeights = "VEQ.xnet.edgesWeights";
}  // namespace archive1

/// Those of archives that keep everything.
namespace archive2 {
inline constexpr std::string_view kVersion = "VEQ.network.version";
inline constexpr std::string_view kDirected = "VEQ.network.directed";
inline constexpr std::string_view kVertices = "VEQ.network.vertices";
inline constexpr std::string_view kFrom = "VEQ.network.from";
inline constexpr std::string_view kTo = "VEQ.network.to";
inline constexpr std::string_view kVertexWeights = "VEQ.network.vertexWeights";
inline constexpr std::string_view kEdgeWeights = "VEQ.network.edgeWeights";
inline constexpr std::string_view kVertexProperties = "VEQ.network.vertexProperties";
inline constexpr std::string_view kEdgeProperties = "VEQ.network.edgeProperties";
}  // namespace archive2

}  // namespace veq::internal
