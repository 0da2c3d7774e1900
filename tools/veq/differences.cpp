#include "differences.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "text.hpp"

namespace veq::tool {
namespace {

bool sameDouble(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

/// A number keeps its value where it is read back as the nearest float of what was a float.
bool sameNumber(const Number& before, const Number& after) {
  if (before.type() == ElementType::kFloat) {
    return sameDouble(static_cast<double>(before.as<float>()),
                      static_cast<double>(after.as<float>()));
  }
  return sameDouble(before.as<double>(), after.as<double>());
}

bool sameValue(const PropertyValue& before, const PropertyValue& after) {
  if (before.number() && after.number()) return sameNumber(*before.number(), *after.number());
  if (before.vector2d() && after.vector2d()) return *before.vector2d() == *after.vector2d();
  if (before.vector3d() && after.vector3d()) return *before.vector3d() == *after.vector3d();
  return before == after;
}

/// The same for readers, but not of the same kind: 5 and "5", (1, 2) and (1, 2, 0).
bool sameInAnotherForm(const PropertyValue& before, const PropertyValue& after) {
  if (before.string() && after.number()) return *before.string() == after.text();
  if (before.number() && after.string()) return before.text() == *after.string();
  if (before.vector2d() && after.vector3d()) {
    return sameDouble(before.vector2d()->x(), after.vector3d()->x()) &&
           sameDouble(before.vector2d()->y(), after.vector3d()->y()) && after.vector3d()->z() == 0;
  }
  return false;
}

PropertyValue valueAt(const PropertyColumn& column, std::uint64_t index) {
  return index < column.count() ? column.objectAtIndex(index) : PropertyValue();
}

/// What the two kinds of properties are called and where they are.
struct Properties {
  std::string whose;
  std::uint64_t count;
  const PropertyTable& before;
  const PropertyTable& after;
};

std::string named(const Properties& properties, const std::string& key) {
  return "the " + properties.whose + " property \"" + key + "\"";
}

Difference columnDifference(const Properties& properties, const std::string& key,
                            const PropertyColumn& before, const PropertyColumn& after) {
  const std::uint64_t count = std::max(properties.count, before.count());
  std::uint64_t changed = 0;
  std::string otherForm;
  for (std::uint64_t i = 0; i < count; ++i) {
    const PropertyValue was = valueAt(before, i);
    const PropertyValue is = valueAt(after, i);
    if (sameValue(was, is)) continue;
    if (sameInAnotherForm(was, is)) {
      otherForm = is.number() ? "numbers" : is.string() ? "text" : "3D vectors";
    } else {
      ++changed;
    }
  }
  if (changed > 0) {
    return {named(properties, key) + " changes in " + std::to_string(changed) + " of " +
            counted(count, "value", "values")};
  }
  if (otherForm.empty()) return {};
  return {named(properties, key) + " comes back as " + otherForm, false};
}

void appendColumnDifferences(std::vector<Difference>& notes, const Properties& properties) {
  for (const auto& [key, column] : properties.before) {
    const auto* const after = properties.after.find(key);
    if (!after) continue;
    notes.push_back(columnDifference(properties, key, *column, **after));
  }
}

/// The keys of the first table that the second lacks.
std::vector<std::string> missingKeys(const PropertyTable& table, const PropertyTable& other) {
  std::vector<std::string> keys;
  for (const auto& entry : table) {
    if (!other.contains(entry.first)) keys.push_back(entry.first);
  }
  return keys;
}

bool contains(const std::vector<std::string>& keys, const std::string& key) {
  return std::find(keys.begin(), keys.end(), key) != keys.end();
}

/// Whether the integers of a list are what the vertices are called now.
bool areNames(const std::string& key, const PropertyColumn& column, const PropertyTable& after) {
  const auto* const names = after.find("Name");
  if (key != "Id" || !names || (*names)->count() < column.count()) return false;
  for (std::uint64_t i = 0; i < column.count(); ++i) {
    if (column.objectAtIndex(i).text() != (*names)->objectAtIndex(i).text()) return false;
  }
  return true;
}

void appendPropertyDifferences(std::vector<Difference>& notes, const Properties& vertices,
                               const Properties& edges) {
  const std::vector<std::string> gained = missingKeys(vertices.after, vertices.before);
  const std::vector<std::string> lostByEdges = missingKeys(edges.before, edges.after);
  for (const std::string& key : missingKeys(vertices.before, vertices.after)) {
    if (areNames(key, **vertices.before.find(key), vertices.after)) {
      notes.push_back({named(vertices, key) + " comes back as names", false});
    } else {
      notes.push_back({named(vertices, key) + " is lost"});
    }
  }
  appendColumnDifferences(notes, vertices);
  for (const std::string& key : lostByEdges) {
    notes.push_back({named(edges, key) +
                     (contains(gained, key) ? " comes back as a vertex property" : " is lost")});
  }
  appendColumnDifferences(notes, edges);
  for (const std::string& key : gained) {
    if (!contains(lostByEdges, key)) notes.push_back({named(vertices, key) + " is added", false});
  }
}

Difference weightsDifference(const std::string& whose, const VEQNumberArray& before,
                             const VEQNumberArray& after, bool wereWeighted, bool areWeighted) {
  const auto was = before.values<float>();
  const auto is = after.values<float>();
  std::uint64_t changed = 0;
  for (std::size_t i = 0; i < std::min(was.size(), is.size()); ++i) {
    changed += !sameDouble(static_cast<double>(was[i]), static_cast<double>(is[i]));
  }
  if (wereWeighted && !areWeighted) {
    if (changed > 0) return {"the weights of " + whose + " are lost"};
    return {whose + " come back without weights, since all are 1", false};
  }
  if (!wereWeighted && areWeighted) return {whose + " come back with weights", false};
  if (changed == 0) return {};
  return {"the weights of " + whose + " change for " + std::to_string(changed) + " of " +
          std::to_string(was.size())};
}

Difference countDifference(std::uint64_t before, std::uint64_t after) {
  if (after < before) {
    const std::uint64_t lost = before - after;
    return {lost == 1
                ? "the last vertex is lost, as it has no edge"
                : "the last " + std::to_string(lost) + " vertices are lost, as they have no edges"};
  }
  if (after > before) return {counted(after - before, "vertex is", "vertices are") + " added"};
  return {};
}

void eraseNone(std::vector<Difference>& notes) {
  const auto isNone = [](const Difference& difference) { return difference.text.empty(); };
  notes.erase(std::remove_if(notes.begin(), notes.end(), isNone), notes.end());
}

}  // namespace

Difference edgeWeightsDifference(const VEQNetwork& before, const VEQNetwork& after) {
  return weightsDifference("edges", *before.edgesWeightValues(), *after.edgesWeightValues(),
                           before.isEdgeWeighted(), after.isEdgeWeighted());
}

std::vector<Difference> edgeColumnDifferences(const VEQNetwork& before, const VEQNetwork& after) {
  const auto ofEdges = before.propertiesOfEdges();
  const auto ofEdgesAfter = after.propertiesOfEdges();
  const Properties edges{"edge", before.countEdges(), *ofEdges, *ofEdgesAfter};
  std::vector<Difference> notes;
  for (const std::string& key : missingKeys(*ofEdges, *ofEdgesAfter)) {
    notes.push_back({named(edges, key) + " is lost"});
  }
  appendColumnDifferences(notes, edges);
  eraseNone(notes);
  return notes;
}

std::vector<Difference> differencesBetween(const VEQNetwork& before, const VEQNetwork& after) {
  std::vector<Difference> notes{
      countDifference(before.countVertices(), after.countVertices()),
      before.isDirected() == after.isDirected() ? Difference()
                                                : Difference{"the direction of edges changes"},
      weightsDifference("vertices", *before.verticesWeightValues(), *after.verticesWeightValues(),
                        before.isVertexWeighted(), after.isVertexWeighted()),
      edgeWeightsDifference(before, after)};
  const auto ofVertices = before.propertiesOfVertices();
  const auto ofVerticesAfter = after.propertiesOfVertices();
  const auto ofEdges = before.propertiesOfEdges();
  const auto ofEdgesAfter = after.propertiesOfEdges();
  appendPropertyDifferences(notes,
                            {"vertex", before.countVertices(), *ofVertices, *ofVerticesAfter},
                            {"edge", before.countEdges(), *ofEdges, *ofEdgesAfter});
  eraseNone(notes);
  return notes;
}

}  // namespace veq::tool
