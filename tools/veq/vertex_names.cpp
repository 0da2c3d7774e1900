#include "vertex_names.hpp"

#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace veq::tool {

namespace {

Shared<const PropertyColumn> columnUnder(const VEQNetwork& network, std::string_view key) {
  const auto properties = network.propertiesOfVertices();
  const auto* const column = properties->find(key);
  return column ? *column : nullptr;
}

bool isNameless(const PropertyColumn* names, std::uint64_t index) {
  return !names || index >= names->count() || names->objectAtIndex(index).text().empty() ||
         names->objectAtIndex(index).isNull();
}

}  // namespace

Shared<const PropertyColumn> columnOfNames(const VEQNetwork& network) {
  const auto names = columnUnder(network, "Name");
  return names ? names : columnUnder(network, "Id");
}

std::string vertexName(const VEQNetwork& network, std::uint64_t index) {
  const auto names = columnOfNames(network);
  if (names && index < names->count()) {
    const PropertyValue name = names->objectAtIndex(index);
    if (!name.isNull()) return name.text();
  }
  return std::to_string(index);
}

std::uint64_t countNameless(const VEQNetwork& network) {
  const auto names = columnUnder(network, "Name");
  if (!names && !columnUnder(network, "Id")) return 0;
  std::uint64_t nameless = 0;
  for (std::uint64_t i = 0; i < network.countVertices(); ++i) {
    nameless += isNameless(names.get(), i);
  }
  return nameless;
}

std::uint64_t numberNames(VEQNetwork& network) {
  const auto names = columnUnder(network, "Name");
  const auto ids = columnUnder(network, "Id");
  std::vector<PropertyValue> all;
  std::uint64_t named = 0;
  for (std::uint64_t i = 0; i < network.countVertices(); ++i) {
    if (!isNameless(names.get(), i)) {
      all.push_back(names->objectAtIndex(i));
      continue;
    }
    ++named;
    all.emplace_back(isNameless(ids.get(), i) ? std::to_string(i) : ids->objectAtIndex(i).text());
  }
  if (named > 0) {
    network.setPropertiesOfVertices_forKey(std::make_shared<GenericArray>(std::move(all)), "Name");
  }
  return named;
}

}  // namespace veq::tool
