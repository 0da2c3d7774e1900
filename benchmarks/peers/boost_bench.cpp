// The Boost Graph Library: an adjacency_list of vectors, and compressed sparse rows for what walks
// and asks for degrees (both directions of an undirected edge are stored there).
#include <boost/graph/adjacency_list.hpp>
#include <boost/graph/compressed_sparse_row_graph.hpp>
#include <boost/graph/random.hpp>
#include <boost/random/mersenne_twister.hpp>

#include <memory>

#include "workload.hpp"

namespace bench {
namespace {

using Rows =
    boost::compressed_sparse_row_graph<boost::directedS, boost::no_property, boost::no_property,
                                       boost::no_property, std::uint32_t, std::uint64_t>;
using Undirected = boost::adjacency_list<boost::vecS, boost::vecS, boost::undirectedS>;
using Directed = boost::adjacency_list<boost::vecS, boost::vecS, boost::bidirectionalS>;
using Pairs = std::vector<std::pair<std::uint32_t, std::uint32_t>>;

Pairs pairsOf(const Edges& edges, bool bothWays) {
  Pairs pairs;
  pairs.reserve(edges.count() * (bothWays ? 2 : 1));
  for (std::uint64_t i = 0; i < edges.count(); ++i) {
    pairs.emplace_back(edges.from[i], edges.to[i]);
    if (bothWays) pairs.emplace_back(edges.to[i], edges.from[i]);
  }
  return pairs;
}

Rows rowsOf(const Edges& edges) {
  const Pairs pairs = pairsOf(edges, true);
  return Rows(boost::edges_are_unsorted_multi_pass, pairs.begin(), pairs.end(), edges.vertices);
}

template <class Graph>
void measureBuildOf(const Edges& edges, Measurement& measurement) {
  const Pairs pairs = pairsOf(edges, false);
  measurement.timeAndWeigh(
      "bytes_per_edge", edges.count(),
      [&] { return std::make_unique<Graph>(pairs.begin(), pairs.end(), edges.vertices); },
      [](const auto& graph) { return num_edges(*graph); });
}

bool measureBuild(const Arguments& arguments, Measurement& measurement) {
  const Edges edges = edgesOf(arguments);
  if (arguments.count("dir") != 0) {
    measureBuildOf<Directed>(edges, measurement);
  } else {
    measureBuildOf<Undirected>(edges, measurement);
  }
  return true;
}

bool measureInsertion(const Arguments& arguments, Measurement& measurement) {
  const Edges edges = edgesOf(arguments);
  measurement.time(
      [&] {
        auto graph = std::make_unique<Undirected>(edges.vertices);
        for (std::uint64_t i = 0; i < edges.count(); ++i) {
          add_edge(edges.from[i], edges.to[i], *graph);
        }
        return graph;
      },
      [](const auto& graph) { return num_edges(*graph); });
  return true;
}

bool measureDegrees(const Arguments& arguments, Measurement& measurement) {
  const Edges edges = edgesOf(arguments);
  const Rows rows = rowsOf(edges);
  std::vector<std::uint64_t> degrees(edges.vertices);
  measurement.time(
      [&] {
        for (std::uint32_t v = 0; v < degrees.size(); ++v) degrees[v] = out_degree(v, rows);
        return Done();
      },
      [&](Done) { return degrees[0]; });
  return true;
}

bool measureWalk(const Arguments& arguments, Measurement& measurement) {
  const Edges edges = edgesOf(arguments);
  const Rows rows = rowsOf(edges);
  const std::uint64_t agents = arguments.count("A", 1);
  const std::uint64_t steps = arguments.count("S", 1000);
  const std::vector<std::uint64_t> starts = startsOf(edges, agents);
  std::vector<std::uint64_t> visits(edges.vertices);
  boost::mt19937 random(42);
  measurement.time(
      [&] {
        for (const std::uint64_t start : starts) {
          auto v = static_cast<std::uint32_t>(start);
          for (std::uint64_t step = 0; step < steps; ++step) {
            v = target(boost::random_out_edge(rows, v, random), rows);
            ++visits[v];
          }
        }
        return Done();
      },
      [&](Done) { return visits.back(); });
  measurement.addNanoseconds("ns_per_step", static_cast<double>(agents * steps));
  return true;
}

}  // namespace
}  // namespace bench

int main(int count, char** values) {
  using namespace bench;
  return run(count, values,
             {{"build", measureBuild},
              {"insert", measureInsertion},
              {"degrees", measureDegrees},
              {"walk", measureWalk}});
}
