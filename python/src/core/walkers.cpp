// Agents that walk, and their paths.
#include <nanobind/stl/optional.h>
#include <nanobind/stl/string_view.h>

#include "veq/walkers.hpp"

#include "support.hpp"

namespace veq::python {
namespace {

constexpr const char* kWalking = "the agents are walking";

/// Agents with the networks that their walks read, of which a walk-only one never changes.
struct BoundWalkers {
  Walkers walkers;
  std::optional<BoundNetwork> network;
  std::optional<BoundNetwork> listeners;
  std::shared_ptr<Use> use = std::make_shared<Use>();
};

std::vector<std::uint64_t> indices(const AnyArray& array) {
  const IndexSpan span = indicesOf(array);
  std::vector<std::uint64_t> result(span.count());
  for (std::size_t i = 0; i < result.size(); ++i) result[i] = span[i];
  return result;
}

void place(BoundWalkers* at, const BoundNetwork& bound, const AnyArray& starts,
           const std::optional<AnyArray>& memory, const std::optional<AnyArray>& errors,
           const BoundNetwork* listeners) {
  const std::vector<std::uint64_t> where = indices(starts);
  std::optional<BoundNetwork> told;
  if (listeners != nullptr) told = *listeners;
  MemoryOptions options;
  if (memory) options.sizes = indices(*memory);
  numbersOf(errors).visit([&](auto values) {
    for (const auto value : values) options.errors.push_back(static_cast<float>(value));
  });
  if (told) options.listeners = told->network;
  Walkers made = reading(bound, [&](const Network& network) {
    return (memory ? Walkers::withMemory(network, where, options) : Walkers::at(network, where))
        .value();
  });
  new (at) BoundWalkers{std::move(made), bound, std::move(told)};
}

void placeOnRows(BoundWalkers* at, const BoundWalkNetwork& bound, const AnyArray& starts) {
  const std::vector<std::uint64_t> where = indices(starts);
  const nb::gil_scoped_release released;
  new (at) BoundWalkers{Walkers::at(bound.network, where).value(), std::nullopt, std::nullopt};
}

IntArray startsOnRows(const BoundWalkNetwork& bound, std::uint64_t agents, bool byDegree,
                      BoundRandom* random) {
  const Drawing drawing(random);
  std::vector<std::uint64_t> made;
  {
    const nb::gil_scoped_release released;
    made = (byDegree ? Walkers::startsByDegree(bound.network, agents, drawing.state())
                     : Walkers::uniformStarts(bound.network, agents, drawing.state()))
               .value();
  }
  return arrayOf(std::move(made));
}

IntArray starts(const BoundNetwork& bound, std::uint64_t agents, bool byDegree,
                BoundRandom* random) {
  const Drawing drawing(random);
  return arrayOf(reading(bound, [&](const Network& network) {
    return (byDegree ? Walkers::startsByDegree(network, agents, drawing.state())
                     : Walkers::uniformStarts(network, agents, drawing.state()))
        .value();
  }));
}

WalkOptions optionsOf(std::optional<std::uint64_t> steps, std::optional<double> until, bool paths,
                      bool firstArrivals, std::string_view choice, double restart,
                      std::optional<unsigned> threads) {
  WalkOptions options;
  options.steps = steps;
  options.target = until;
  options.paths = paths;
  options.firstArrivals = firstArrivals;
  options.choice = choiceNamed(choice);
  options.restart = restart;
  options.threads = threads;
  return options;
}

const char* wordOf(WalkEnd end) {
  switch (end) {
    case WalkEnd::kSteps:
      return "steps";
    case WalkEnd::kTarget:
      return "target";
    case WalkEnd::kStopped:
      return "stopped";
    case WalkEnd::kStuck:
      return "stuck";
    case WalkEnd::kDraws:
      break;
  }
  return "draws";
}

// (arrivals of shape (steps, agents), starts)
using PathsTuple = Tuple<IndexArray, IntArray>;
PathsTuple tupleOf(const WalkPaths& paths) {
  std::vector<std::uint64_t> starts(paths.countAgents());
  for (std::size_t a = 0; a < starts.size(); ++a) starts[a] = paths.start(a);
  const std::size_t steps = paths.countSteps();
  const std::size_t agents = paths.countAgents();
  return paths.visitArrivals([&](auto arrivals) -> PathsTuple {
    using T = typename decltype(arrivals)::element_type;
    return nb::make_tuple(arrayOver<T>(arrivals.data(), {steps, agents}, paths),
                          arrayOf(std::move(starts)));
  });
}

// (steps, vertices)
using CoverageTuple = Tuple<IntArray, IntArray>;
CoverageTuple tupleOf(const std::vector<Coverage>& coverage) {
  std::vector<std::uint64_t> steps;
  std::vector<std::uint64_t> vertices;
  for (const Coverage& entry : coverage) {
    steps.push_back(entry.step);
    vertices.push_back(entry.vertices);
  }
  return nb::make_tuple(arrayOf(std::move(steps)), arrayOf(std::move(vertices)));
}

// (end, steps, paths or None, first arrivals or None, coverage or None)
using WalkTuple = Tuple<nb::str, std::uint64_t, std::optional<PathsTuple>, std::optional<IntArray>,
                        std::optional<CoverageTuple>>;
WalkTuple tupleOf(WalkOutcome outcome, bool paths, bool firstArrivals) {
  const std::vector<Coverage> coverage = outcome.coverage();
  return nb::make_tuple(
      wordOf(outcome.end), outcome.steps, paths ? nb::object(tupleOf(*outcome.paths)) : nb::none(),
      firstArrivals ? nb::object(arrayOf(std::move(outcome.firstArrivals))) : nb::none(),
      firstArrivals ? nb::object(tupleOf(coverage)) : nb::none());
}

// What go(walkers, options) gives, where the networks are read and nobody else draws.
template <class Go>
auto walked(BoundWalkers& bound, WalkOptions options, BoundRandom* random, nb::object progress,
            Go go) {
  Follow follow(std::move(progress));
  options.progress = follow.progress();
  const EditingUse use(*bound.use, kWalking);
  const Drawing drawing(random);
  options.random = drawing.state();
  const nb::gil_scoped_release released;
  std::optional<ReadingUse> network;
  if (bound.network) network.emplace(*bound.network->use);
  std::optional<ReadingUse> listeners;
  if (bound.listeners) listeners.emplace(*bound.listeners->use);
  return go(bound.walkers, options).value();
}

WalkTuple walk(BoundWalkers& bound, std::optional<std::uint64_t> steps, std::optional<double> until,
               bool paths, bool firstArrivals, std::string_view choice, double restart,
               BoundRandom* random, nb::object progress, std::optional<unsigned> threads) {
  return tupleOf(
      walked(bound, optionsOf(steps, until, paths, firstArrivals, choice, restart, threads), random,
             std::move(progress),
             [](Walkers& walkers, const WalkOptions& options) { return walkers.walk(options); }),
      paths, firstArrivals);
}

// (record, what a walk gives)
using RecordTuple = Tuple<BoundRecord, WalkTuple>;
RecordTuple record(BoundWalkers& bound, std::optional<std::uint64_t> steps,
                   std::optional<double> until, bool paths, bool firstArrivals,
                   std::string_view choice, double restart, BoundRandom* random,
                   nb::object progress, std::optional<unsigned> threads) {
  const WalkRecord made =
      walked(bound, optionsOf(steps, until, paths, firstArrivals, choice, restart, threads), random,
             std::move(progress),
             [](Walkers& walkers, const WalkOptions& options) { return walkers.record(options); });
  return nb::make_tuple(BoundRecord{made}, tupleOf(made.outcome(), paths, firstArrivals));
}

// What f(walkers) gives, computed without the interpreter's lock.
template <class F>
auto resting(const BoundWalkers& bound, F f) {
  const ReadingUse use(*bound.use, kWalking);
  const nb::gil_scoped_release released;
  return f(bound.walkers);
}

std::uint64_t agentOf(const BoundWalkers& bound, std::int64_t agent) {
  return indexBelow(agent, bound.walkers.countAgents(), "agent");
}

IntArray visits(const BoundWalkers& bound, std::optional<std::int64_t> agent) {
  if (!agent) {
    return arrayOf(resting(bound, [](const Walkers& walkers) { return walkers.visits(); }));
  }
  const std::uint64_t a = agentOf(bound, *agent);
  return arrayOf(resting(bound, [a](const Walkers& walkers) { return walkers.visits(a); }));
}

IntArray liveVisits(const BoundWalkers& bound, std::int64_t agent) {
  const std::uint64_t a = agentOf(bound, agent);
  const Shared<const VEQNumberArray> array =
      resting(bound, [a](const Walkers& walkers) { return walkers.liveVisits(a); });
  return array->visit([&](auto elements) { return viewOf<nb::object>(elements, array); });
}

IntArray remembered(const BoundWalkers& bound, std::int64_t agent) {
  const std::uint64_t a = agentOf(bound, agent);
  return arrayOf(resting(bound, [a](const Walkers& walkers) { return walkers.remembered(a); }));
}

IntArray positions(const BoundWalkers& bound) {
  return arrayOf(resting(bound, [](const Walkers& walkers) { return walkers.positions(); }));
}

void forget(BoundWalkers& bound) {
  const EditingUse use(*bound.use, kWalking);
  bound.walkers.forget();
}

std::uint64_t countAgents(const BoundWalkers& bound) { return bound.walkers.countAgents(); }

PyGetSetDef properties[] = {
    property<BoundWalkers, &countAgents>("num_agents", "How many agents there are."),
    {},
};
PyType_Slot slots[] = {{Py_tp_getset, properties}, {}};

}  // namespace

void bindWalkers(nb::module_& m) {
  nb::class_<BoundWalkers>(m, "Walkers", nb::type_slots(slots))
      .def("__init__", &place, nb::arg("network"), nb::arg("starts"), nb::arg("memory").none(),
           nb::arg("errors").none(), nb::arg("listeners").none())
      .def("__init__", &placeOnRows, nb::arg("network"), nb::arg("starts"))
      .def("_walk", &walk, nb::arg("steps").none(), nb::arg("until").none(), nb::arg("paths"),
           nb::arg("first_arrivals"), nb::arg("choice"), nb::arg("restart"),
           nb::arg("random").none(), nb::arg("progress").none(), nb::arg("threads").none())
      .def("_record", &record, nb::arg("steps").none(), nb::arg("until").none(), nb::arg("paths"),
           nb::arg("first_arrivals"), nb::arg("choice"), nb::arg("restart"),
           nb::arg("random").none(), nb::arg("progress").none(), nb::arg("threads").none())
      .def("_positions", &positions)
      .def("_visits", &visits, nb::arg("agent").none())
      .def("_live_visits", &liveVisits, nb::arg("agent"))
      .def("_remembered", &remembered, nb::arg("agent"))
      .def("_forget", &forget);
  m.def("starts", &starts, nb::arg("network"), nb::arg("agents"), nb::arg("by_degree"),
        nb::arg("random").none());
  m.def("starts", &startsOnRows, nb::arg("network"), nb::arg("agents"), nb::arg("by_degree"),
        nb::arg("random").none());
}

}  // namespace veq::python
