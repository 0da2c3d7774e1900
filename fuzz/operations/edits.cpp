#include <algorithm>

#include "fuzz/operations/world.hpp"

namespace veq::fuzz {
namespace {

using Weights = std::optional<std::vector<float>>;

PropertyValue unsetLike(const ColumnImage& column, ElementType type) {
  switch (column.kind) {
    case PropertyColumn::Kind::kGeneric:
      return {};
    case PropertyColumn::Kind::kVector2d:
      return VEQVector2d();
    case PropertyColumn::Kind::kVector3d:
      return VEQVector3d();
    case PropertyColumn::Kind::kNumber:
      break;
  }
  switch (type) {
    case ElementType::kInteger:
      return std::int64_t{0};
    case ElementType::kUnsignedInteger:
      return std::uint64_t{0};
    case ElementType::kFloat:
      return 0.0F;
    case ElementType::kDouble:
      break;
  }
  return 0.0;
}

// The element type that a column of numbers has is not in its values where there are none.
ElementType typeOf(const PropertyColumn& column) {
  const auto* numbers = dynamic_cast<const VEQNumberArray*>(&column);
  return numbers ? numbers->elementType() : ElementType::kDouble;
}

// A column grows once for each key under which it stands.
void growEdges(Subject& subject, std::uint64_t count) {
  for (const auto& [key, column] : *subject.network->propertiesOfEdges()) {
    ColumnImage& image = *subject.model.ofEdges.at(key);
    image.values.insert(image.values.end(), count, unsetLike(image, typeOf(*column)));
  }
  if (Weights& weights = subject.model.topology.edgesWeights) {
    weights->resize(weights->size() + count, 1.0F);
  }
}

void addEdges(Subject& subject, Input& input) {
  test::SlowNetwork& topology = subject.model.topology;
  std::vector<std::uint64_t> from;
  std::vector<std::uint64_t> to;
  const std::uint64_t count = input.below(5);
  bool outside = false;
  for (std::uint64_t i = 0; i < count; ++i) {
    from.push_back(anyIndex(input, topology.vertexCount));
    to.push_back(anyIndex(input, topology.vertexCount));
    outside |= std::max(from[i], to[i]) >= topology.vertexCount;
  }
  const bool added = succeeds<std::invalid_argument>(outside, [&] {
    subject.network->addEdgesFromVerticesIndices_toVerticesIndices_count(from.data(), to.data(),
                                                                         count);
  });
  if (!added) return;
  growEdges(subject, count);
  for (std::uint64_t i = 0; i < count; ++i) topology.edges.emplace_back(from[i], to[i]);
}

void setWeight(Weights& weights, std::uint64_t count, std::uint64_t index, float weight) {
  if (!weights) weights.emplace(count, 0.0F);
  (*weights)[index] = weight;
}

void link(World& world, Subject& subject, Input& input) {
  test::SlowNetwork& topology = subject.model.topology;
  const std::uint64_t a = anyIndex(input, topology.vertexCount);
  const std::uint64_t b = anyIndex(input, topology.vertexCount);
  Subject& other = input.below(8) == 0 ? *choose(world.subjects, input) : subject;
  const auto source = VEQVertex::initAtNetwork_identification(*subject.network, a);
  const auto target = VEQVertex::initAtNetwork_identification(*other.network, b);
  const bool weighs = input.flag();
  const float weight = anyWeight(input);
  const bool refused =
      other.network != subject.network || a >= topology.vertexCount || b >= topology.vertexCount;
  Shared<VEQEdge> edge;
  const bool linked = succeeds<std::invalid_argument>(refused, [&] {
    edge = weighs ? subject.network->linkVertex_to_weight(*source, *target, weight)
                  : subject.network->linkVertex_to(*source, *target);
  });
  if (!linked) return;
  VEQ_CHECK(edge->identification() == topology.edges.size());
  growEdges(subject, 1);
  topology.edges.emplace_back(a, b);
  if (weighs && subject.editable) {
    setWeight(topology.edgesWeights, topology.edges.size(), topology.edges.size() - 1, weight);
  }
}

void setOneWeight(Subject& subject, Input& input) {
  test::SlowNetwork& topology = subject.model.topology;
  const bool ofVertices = input.flag();
  const std::uint64_t count = ofVertices ? topology.vertexCount : topology.edges.size();
  const std::uint64_t index = anyIndex(input, count);
  const float weight = anyWeight(input);
  const bool set = succeeds<std::invalid_argument>(subject.editable && index >= count, [&] {
    if (ofVertices) return subject.network->setWeightValue_atVertexIndex(weight, index);
    subject.network->setWeightValue_atEdgeIndex(weight, index);
  });
  if (!set || !subject.editable) return;
  setWeight(ofVertices ? topology.verticesWeights : topology.edgesWeights, count, index, weight);
}

void setAllWeights(Subject& subject, Input& input) {
  test::SlowNetwork& topology = subject.model.topology;
  const bool ofVertices = input.flag();
  const std::uint64_t count = ofVertices ? topology.vertexCount : topology.edges.size();
  // One too few, as many, or one more, which is ignored.
  const std::uint64_t given = count + input.below(3) - (count > 0 ? 1 : 0);
  internal::RawVector<float> weights(given);
  for (float& weight : weights) weight = anyWeight(input);
  std::vector<float> expected(weights.begin(), weights.end());
  const VEQNumberArray array(std::move(weights));
  const bool set = succeeds<std::invalid_argument>(subject.editable && given < count, [&] {
    if (ofVertices) return subject.network->setVerticesWeightValues(array);
    subject.network->setEdgesWeightValues(array);
  });
  if (!set || !subject.editable) return;
  expected.resize(count);
  (ofVertices ? topology.verticesWeights : topology.edgesWeights) = std::move(expected);
}

// Whether a column of this kind can hold the value.
bool holds(PropertyColumn::Kind kind, const PropertyValue& value) {
  switch (kind) {
    case PropertyColumn::Kind::kGeneric:
      return true;
    case PropertyColumn::Kind::kNumber:
      return value.isNull() || value.number();
    case PropertyColumn::Kind::kVector2d:
      return value.isNull() || value.vector2d();
    case PropertyColumn::Kind::kVector3d:
      return value.isNull() || value.vector3d();
  }
  return false;
}

PropertyValue converted(const ColumnImage& column, ElementType type, const PropertyValue& value) {
  if (column.kind == PropertyColumn::Kind::kGeneric) return value;
  if (value.isNull()) return unsetLike(column, type);
  if (column.kind != PropertyColumn::Kind::kNumber) return value;
  switch (type) {
    case ElementType::kInteger:
      return value.number()->as<std::int64_t>();
    case ElementType::kUnsignedInteger:
      return value.number()->as<std::uint64_t>();
    case ElementType::kFloat:
      return value.number()->as<float>();
    case ElementType::kDouble:
      break;
  }
  return value.number()->as<double>();
}

// The column that the first value under a new key makes.
ColumnImage newColumn(bool ofVertices, const PropertyValue& value, std::uint64_t count) {
  ColumnImage column;
  if (ofVertices && value.number()) column.kind = PropertyColumn::Kind::kNumber;
  if (ofVertices && value.vector2d()) column.kind = PropertyColumn::Kind::kVector2d;
  if (ofVertices && value.vector3d()) column.kind = PropertyColumn::Kind::kVector3d;
  column.values.assign(count, unsetLike(column, ElementType::kDouble));
  return column;
}

void setValue(Subject& subject, Input& input) {
  const bool ofVertices = input.flag();
  const std::uint64_t count =
      ofVertices ? subject.model.topology.vertexCount : subject.model.topology.edges.size();
  const std::string key = anyKey(input);
  const PropertyValue value = anyValue(input);
  const std::uint64_t index = anyIndex(input, count + 1);
  TableImage& table = ofVertices ? subject.model.ofVertices : subject.model.ofEdges;
  const auto at = table.find(key);
  const Shared<ColumnImage> column =
      at != table.end() ? at->second
                        : std::make_shared<ColumnImage>(newColumn(ofVertices, value, count));
  const bool accepted = index < column->values.size() && holds(column->kind, value);
  const bool set = mayThrow([&] {
    if (ofVertices) {
      return subject.network->setPropertyValue_forKey_atVertexIndex(value, key, index);
    }
    subject.network->setPropertyValue_forKey_atEdgeIndex(value, key, index);
  });
  VEQ_CHECK(set == accepted);
  const auto& live =
      ofVertices ? *subject.network->propertiesOfVertices() : *subject.network->propertiesOfEdges();
  VEQ_CHECK(live.contains(key) == (set || at != table.end()));
  if (!set) return;
  column->values[index] = converted(*column, typeOf(**live.find(key)), value);
  table[key] = column;
}

LooseColumn newLooseColumn(Input& input) {
  LooseColumn loose;
  switch (input.below(6)) {
    case 0:
      loose.column = std::make_shared<VEQNumberArray>();
      break;
    case 1:
      loose.column = std::make_shared<VEQNumberArray>(internal::RawVector<std::int64_t>());
      break;
    case 2:
      loose.column = std::make_shared<VEQNumberArray>(internal::RawVector<float>());
      break;
    case 3:
      loose.column = std::make_shared<VEQVector2dArray>();
      break;
    case 4:
      loose.column = std::make_shared<VEQVector3dArray>();
      break;
    default:
      loose.column = std::make_shared<GenericArray>();
      break;
  }
  for (std::uint64_t count = input.below(8); count > 0; --count) {
    const PropertyValue value = anyValue(input);
    const bool refused = !holds(loose.column->kind(), value);
    succeeds<std::invalid_argument>(refused, [&] { loose.column->addObject(value); });
  }
  loose.model = std::make_shared<ColumnImage>(imageOf(*loose.column));
  if (input.below(4) == 0) loose.column = loose.column->fixedCopy();
  return loose;
}

bool isReserved(const std::string& key) { return key.substr(0, 5) == "Edge "; }

void installColumn(World& world, Subject& subject, Input& input) {
  if (world.columns.empty() || input.flag()) {
    keep(world.columns, newLooseColumn(input), input);
  }
  const LooseColumn& loose = *choose(world.columns, input);
  const bool ofVertices = input.flag();
  const std::string key = anyKey(input);
  const bool removes = input.below(8) == 0;
  const Shared<PropertyColumn> column = removes ? nullptr : loose.column;
  if (ofVertices) {
    subject.network->setPropertiesOfVertices_forKey(column, key);
  } else {
    subject.network->setPropertiesOfEdges_forKey(column, key);
  }
  if (isReserved(key)) return;
  TableImage& table = ofVertices ? subject.model.ofVertices : subject.model.ofEdges;
  if (removes) {
    table.erase(key);
  } else {
    // Shared with whoever else has it, except for a copy of what cannot be edited.
    table[key] =
        loose.column->isEditable() ? loose.model : std::make_shared<ColumnImage>(*loose.model);
  }
}

void changeLooseColumn(World& world, Input& input) {
  const LooseColumn* const loose = choose(world.columns, input);
  if (!loose || loose->model->values.size() > 200) return;
  const PropertyValue value = anyValue(input);
  const bool refused = !loose->column->isEditable() || !holds(loose->column->kind(), value);
  const bool added =
      succeeds<std::invalid_argument>(refused, [&] { loose->column->addObject(value); });
  if (added) {
    loose->model->values.push_back(converted(*loose->model, typeOf(*loose->column), value));
  }
}

}  // namespace

void editNetwork(World& world, Input& input) {
  Subject* const subject = choose(world.subjects, input);
  if (!subject || subject->model.topology.edges.size() > 200) return;
  switch (input.below(12)) {
    case 0:
      subject->network->blockEditing();
      subject->editable = false;
      break;
    case 1:
    case 2:
      setOneWeight(*subject, input);
      break;
    case 3:
    case 4:
      setAllWeights(*subject, input);
      break;
    case 5:
    case 6:
    case 7:
      link(world, *subject, input);
      break;
    default:
      addEdges(*subject, input);
      break;
  }
  VEQ_CHECK(subject->network->isEditable() == subject->editable);
  VEQ_CHECK(subject->network->countEdges() == subject->model.topology.edges.size());
}

void editProperties(World& world, Input& input) {
  Subject* const subject = choose(world.subjects, input);
  if (!subject) return;
  switch (input.below(4)) {
    case 0:
      return installColumn(world, *subject, input);
    case 1:
      return changeLooseColumn(world, input);
    default:
      return setValue(*subject, input);
  }
}

}  // namespace veq::fuzz
