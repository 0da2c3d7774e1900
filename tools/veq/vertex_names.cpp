#include "vertex_names.hpp"

#include <string_view>

namespace veq::tool {

Shared<const PropertyColumn> columnOfNames(const VEQNetwork& network) {
  const auto properties = network.propertiesOfVertices();
  for (const std::string_view key : {"Name", "Id"}) {
    if (const auto* const column = properties->find(key)) return *column;
  }
  return nullptr;
}

std::string vertexName(const VEQNetwork& network, std::uint64_t index) {
  const auto names = columnOfNames(network);
  if (names && index < names->count()) {
    const PropertyValue name = names->objectAtIndex(index);
    if (!name.isNull()) return name.text();
  }
  return std::to_string(index);
}

}  // namespace veq::tool
