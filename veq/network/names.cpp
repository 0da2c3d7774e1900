// Vertices by name.

#include <charconv>

#include "veq/network/internal/network_core.hpp"
#include "veq/network/network.hpp"

namespace veq {
namespace {

// Without names a vertex goes by its index in decimal digits, so that the text itself tells which
// one is meant: the number that, written out, gives the text again.
std::optional<std::uint64_t> indexNamed(std::string_view name) {
  std::uint64_t index = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), index);
  const bool whole = error == std::errc() && end == name.data() + name.size();
  const bool asWritten = name == "0" || (!name.empty() && name.front() != '0');
  return whole && asWritten ? std::optional(index) : std::nullopt;
}

// The indices of the vertices of this name, or of the first of them.
std::vector<std::uint64_t> verticesNamed(const internal::NetworkCore& core, std::string_view name,
                                         bool firstOnly) {
  std::vector<std::uint64_t> found;
  const std::uint64_t n = core.store.vertexCount();
  const auto* column = core.properties->vertices.find("Name");
  if (!column) {
    if (const auto index = indexNamed(name); index && *index < n) found.push_back(*index);
    return found;
  }
  // Text can stand in a column of any kind alone.
  if ((*column)->kind() != PropertyColumn::Kind::kGeneric) return found;
  const auto& names = static_cast<const GenericArray&>(**column).values();
  for (std::uint64_t v = 0; v < n && v < names.size() && !(firstOnly && !found.empty()); ++v) {
    if (const std::string* text = names[v].string(); text && *text == name) found.push_back(v);
  }
  return found;
}

}  // namespace

Shared<VEQVertex> VEQNetwork::vertexWithName(std::string_view name) const {
  const auto found = verticesNamed(*core_, name, true);
  return found.empty() ? nullptr : vertexAtIndex(found.front());
}

VEQVertexArray VEQNetwork::verticesWithName(std::string_view name) const {
  return VEQVertexArray(core_->vertices(), verticesNamed(*core_, name, false));
}

}  // namespace veq
