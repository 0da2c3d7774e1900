// Everything that can be asked of a group of agents or done to it besides long walks, each of whose
// allocations is made to fail.
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/agents.hpp"
#include "tests/support/failing_allocation.hpp"
#include "veq/agents/dynamic_agents_group.hpp"
#include "veq/numeric/generic_array.hpp"

namespace veq::test::groups_allocations_test {
namespace {

using Group = VEQNetworkAgentsGroup;

const std::string kLong(50, 'x');

// 0 -> 1 -> ... -> 9 -> 0: where an agent stands tells its steps.
Shared<VEQNetwork> ring() {
  return networkOf(
      10, {{0, 1}, {1, 2}, {2, 3}, {3, 4}, {4, 5}, {5, 6}, {6, 7}, {7, 8}, {8, 9}, {9, 0}}, true);
}

// Three agents after four steps, of either kind.
Owned<Group> walked(bool withMemory) {
  const auto start = VEQNumberArray::ofIndices({0, 1, 2});
  Owned<Group> group;
  if (withMemory) {
    group = VEQNetworkDynamicAgentsGroup::
        initAtNetwork_initialVerticesIndices_agentsNetwork_agentsErrors_agentsMemory(
            ring(), start, ring(), VEQNumberArray::ofFloats({0, 0, 0}),
            VEQNumberArray::ofIndices({2, 2, 2}));
  } else {
    group = VEQNetworkAgentsGroup::initAtNetwork_initialVerticesIndices(ring(), start);
  }
  group->walkForSteps_returnPath(4, false);
  group->setPropertyValue_forKey_forAgent(kLong, "Name", 1);
  group->setPropertyValues_forKey(PropertyValue(kLong + "all"), "All");
  return group;
}

std::string say(const Indices& values) {
  std::string joined;
  for (const std::uint64_t value : values) joined += std::to_string(value) + " ";
  return joined;
}
std::string say(const VEQVertexArray& vertices) { return say(indices(vertices)); }
std::string say(const Shared<const VEQNumberArray>& array) { return array->description(); }
std::string say(const AgentsProperty& property) {
  if (const auto* value = std::get_if<PropertyValue>(&property)) return value->text();
  const PropertyColumn& column = *std::get<Shared<PropertyColumn>>(property);
  std::string joined;
  for (std::uint64_t i = 0; i < column.count(); ++i) joined += column.objectAtIndex(i).text() + "|";
  return joined;
}
template <class T>
std::string say(const std::optional<T>& value) {
  return value ? say(*value) : "nothing";
}
std::string say(const AgentsPropertyTable& table) {
  std::string joined;
  for (const auto& [key, property] : table) joined += key + "=" + say(property) + ";";
  return joined;
}

// All that can be asked of it.
std::string tell(const Group& group) {
  std::string all = say(group.agentsCurrentVerticesList()) + say(*group.properties()) +
                    say(group.globalVisitFrequencyOfVertices());
  for (const std::int64_t agent : {0, 1, 2}) {
    all += say(group.visitFrequencyOfVerticesForAgent(agent)) +
           say(group.orderOfVisitedVerticesForAgent(agent));
  }
  return all + std::to_string(group.currentProgress()) + std::to_string(group.isWorking()) +
         std::to_string(group.walkCount());
}

struct Operation {
  const char* name;
  std::string (*run)(Group&);
};

void PrintTo(const Operation& operation, std::ostream* out) { *out << operation.name; }

/// Whether the group walks with memory, and what is done to it.
class EveryGroupOperation : public testing::TestWithParam<std::tuple<bool, Operation>> {};

TEST_P(EveryGroupOperation, IsDoneOrThrows) {
  const auto& [withMemory, operation] = GetParam();
  const bool memory = withMemory;
  const auto run = operation.run;
  seed(1);
  const Owned<Group> reference = walked(memory);
  const std::string before = tell(*reference);
  const std::string whole = run(*reference);
  const std::string after = tell(*reference);
  std::string answer;
  const std::uint64_t failures =
      forEachFailingAllocation([memory] { return walked(memory); },
                               [&answer, run](Owned<Group>& group) { answer = run(*group); },
                               [&](Owned<Group>& group, bool failed) {
                                 if (failed) {
                                   EXPECT_EQ(answer, "");
                                   EXPECT_EQ(tell(*group), before);
                                   answer = run(*group);
                                 }
                                 EXPECT_EQ(answer, whole);
                                 EXPECT_EQ(tell(*group), after);
                                 std::string().swap(answer);
                               });
  EXPECT_GE(failures, 1U);
}

const VEQVertexArray kHandles = ring()->vertices();
const VEQNumberArray kPlaces = VEQNumberArray::ofIndices({5, 6, 7, 8});

const Operation kQuestions[] = {
    {"places", [](Group& g) { return say(g.agentsCurrentVerticesList()); }},
    {"place", [](Group& g) { return std::to_string(g.currentVertexOfAgent(1)->identification()); }},
    {"totals", [](Group& g) { return say(g.globalVisitFrequencyOfVertices()); }},
    {"zeros", [](Group& g) { return say(g.globalOrderOfVisitedVertices()); }},
    {"visits", [](Group& g) { return say(g.visitFrequencyOfVerticesForAgent(1)); }},
    {"order", [](Group& g) { return say(g.orderOfVisitedVerticesForAgent(2)); }},
    {"property", [](Group& g) { return say(g.propertyValueForAgent_forKey(1, "Name")); }},
    {"property_of_all", [](Group& g) { return say(g.propertyValueForAgent_forKey(1, "All")); }},
    {"column", [](Group& g) { return say(g.propertyValuesForKey("Name")); }},
    {"properties", [](Group& g) { return say(g.propertiesForAgent(1)); }},
    {"keys", [](Group& g) { return g.properties()->keys().front() + kLong; }},
};

const Operation kChanges[] = {
    {"placed_by_index",
     [](Group& g) {
       g.setAgentsCurrentVerticesIndices(kPlaces);
       return std::string("done");
     }},
    {"placed_by_handle",
     [](Group& g) {
       g.setAgentsCurrentVertices(kHandles);
       return std::string("done");
     }},
    {"new_property",
     [](Group& g) {
       g.setPropertyValue_forKey_forAgent(kLong, "a new key that is too long to lie in it", 2);
       return std::string("done");
     }},
    {"old_property",
     [](Group& g) {
       g.setPropertyValue_forKey_forAgent(kLong + "2", "Name", 2);
       return std::string("done");
     }},
    {"property_for_all",
     [](Group& g) {
       g.setPropertyValues_forKey(PropertyValue(kLong + "3"), "All");
       return std::string("done");
     }},
    {"frozen_properties",
     [](Group& g) {
       AgentsPropertyTable table;
       table.set(kLong, PropertyValue(1));
       g.setProperties(table);
       return std::string("done");
     }},
};

std::string nameOf(const testing::TestParamInfo<std::tuple<bool, Operation>>& info) {
  return std::string(std::get<1>(info.param).name) + (std::get<0>(info.param) ? "_dynamic" : "");
}

INSTANTIATE_TEST_SUITE_P(Questions, EveryGroupOperation,
                         testing::Combine(testing::Bool(), testing::ValuesIn(kQuestions)), nameOf);
INSTANTIATE_TEST_SUITE_P(Changes, EveryGroupOperation,
                         testing::Combine(testing::Bool(), testing::ValuesIn(kChanges)), nameOf);

TEST(GroupAllocations, AreNotMadeToForget) {
  for (const bool memory : {false, true}) {
    EXPECT_EQ(forEachFailingAllocation(
                  [memory] { return walked(memory); },
                  [](Owned<Group>& group) { group->flushWalkHistory(); },
                  [](Owned<Group>& group, bool failed) {
                    EXPECT_FALSE(failed);
                    EXPECT_EQ(integers(group->visitFrequencyOfVerticesForAgent(0)), Integers(10));
                  }),
              0U);
  }
}

// A walk with paths has all its memory before its first step: it is made or nothing is changed.
TEST(GroupAllocations, OfShortWalksWithPathsChangeNothing) {
  for (const bool memory : {false, true}) {
    for (const std::uint64_t steps : {1U, 3U}) {
      seed(1);
      std::vector<Indices> paths;
      const std::uint64_t failures = forEachFailingAllocation(
          [memory] { return walked(memory); },
          [&](Owned<Group>& group) {
            const VEQVertexPaths made =
                steps == 1 ? group->tellAgentsToWalkToNextVertices() : group->walkForSteps(steps);
            paths = indices(made);
          },
          [&](Owned<Group>& group, bool failed) {
            EXPECT_FALSE(group->isWorking());
            const Indices at = indices(group->agentsCurrentVerticesList());
            // What is told of the paths comes after the walk and may fail by itself.
            const bool moved = at == Indices{4 + steps, 5 + steps, 6 + steps};
            EXPECT_TRUE(moved || (failed && at == Indices({4, 5, 6})));
            if (moved) {
              EXPECT_EQ(static_cast<std::uint64_t>(group->currentProgress()), steps);
            }
            const Integers visits = integers(group->visitFrequencyOfVerticesForAgent(0));
            EXPECT_EQ(visits[4 + steps], moved ? 1 : 0);
            if (!failed) {
              ASSERT_EQ(paths.size(), 3U);
              EXPECT_EQ(paths[2].back(), 6 + steps);
            }
            std::vector<Indices>().swap(paths);
          });
      EXPECT_GE(failures, 4U);
    }
  }
}

}  // namespace
}  // namespace veq::test::groups_allocations_test
