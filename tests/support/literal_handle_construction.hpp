#pragma once

#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "veq/network/network.hpp"

namespace veq::test {

/// Construction from handles, spelt out: handle by handle, through public operations, with linear
/// searches. The judge of the library's column-wise form.
class LiteralHandleConstruction {
 public:
  static Owned<VEQNetwork> fromEdges(const VEQVertexArray& vertices, const VEQEdgeArray& edges,
                                     bool directed) {
    std::vector<std::uint64_t> from;
    std::vector<std::uint64_t> to;
    for (std::uint64_t e = 0; e < edges.count(); ++e) {
      from.push_back(positionOf(*edges[e]->fromVertex(), vertices));
      to.push_back(positionOf(*edges[e]->toVertex(), vertices));
    }
    auto network = build(vertices, from, to, directed);
    for (std::uint64_t e = 0; e < edges.count(); ++e) {
      network->edgeAtIndex(e)->setProperties(edges[e]->properties());
    }
    return network;
  }

  static Owned<VEQNetwork> fromLinks(const VEQVertexArray& vertices, const VEQVertexArray& sources,
                                     const VEQVertexArray& targets, bool directed) {
    std::vector<std::uint64_t> from;
    std::vector<std::uint64_t> to;
    for (std::uint64_t e = 0; e < sources.count(); ++e) {
      from.push_back(positionOf(*sources[e], vertices));
      to.push_back(positionOf(*targets[e], vertices));
    }
    return build(vertices, from, to, directed);
  }

  static VEQVertexArray distinct(const VEQVertexArray& from, const VEQVertexArray& to) {
    std::vector<Shared<VEQVertex>> result;
    const auto add = [&result](const Shared<VEQVertex>& vertex) {
      for (const auto& known : result) {
        if (known->isEqual(*vertex)) return;
      }
      result.push_back(vertex);
    };
    for (std::uint64_t i = 0; i < from.count(); ++i) {
      add(from[i]);
      add(to[i]);
    }
    return result;
  }

 private:
  static std::uint64_t positionOf(const VEQVertex& vertex, const VEQVertexArray& vertices) {
    for (std::uint64_t i = 0; i < vertices.count(); ++i) {
      if (vertices[i]->isEqual(vertex)) return i;
    }
    return 0;
  }

  static Owned<VEQNetwork> build(const VEQVertexArray& vertices,
                                 const std::vector<std::uint64_t>& from,
                                 const std::vector<std::uint64_t>& to, bool directed) {
    auto network = VEQNetwork::initWithVerticesCount_linksIndexedFrom_toIndices_directed(
        vertices.count(), VEQNumberArray::ofIndices(from), VEQNumberArray::ofIndices(to), directed);
    std::set<std::string> mixed;
    for (std::uint64_t i = 0; i < vertices.count(); ++i) {
      for (const auto& [key, value] : vertices[i]->properties()) {
        try {
          network->setPropertyValue_forKey_atVertexIndex(value, key, i);
        } catch (const std::invalid_argument&) {
          mixed.insert(key);
        }
      }
    }
    for (const std::string& key : mixed) {
      auto column = std::make_shared<GenericArray>();
      for (std::uint64_t i = 0; i < vertices.count(); ++i) {
        const PropertyMap properties = vertices[i]->properties();
        const PropertyValue* value = properties.find(key);
        column->addObject(value ? *value : PropertyValue());
      }
      network->setPropertiesOfVertices_forKey(column, key);
    }
    return network;
  }
};

}  // namespace veq::test
