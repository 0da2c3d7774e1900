#include "igraph_graph.hpp"

namespace bench {
namespace {

class Matrix {
 public:
  Matrix() { igraph_matrix_init(&matrix_, 0, 0); }
  ~Matrix() { igraph_matrix_destroy(&matrix_); }
  Matrix(const Matrix&) = delete;
  Matrix& operator=(const Matrix&) = delete;

  [[nodiscard]] igraph_matrix_t* get() { return &matrix_; }

 private:
  igraph_matrix_t matrix_;
};

// All from each of some vertices; the sum of those that are finite.
bool measureDistances(const Arguments& arguments, Measurement& measurement) {
  const Edges edges = edgesOf(arguments);
  const auto graph = graphOf(edges);
  const std::vector<std::uint64_t> starts = startsOf(edges, arguments.count("sources", 100));
  IntVector sources(starts.size());
  for (std::uint64_t i = 0; i < starts.size(); ++i) {
    sources[i] = static_cast<igraph_integer_t>(starts[i]);
  }
  measurement.time(
      [&] {
        auto distances = std::make_unique<Matrix>();
        igraph_distances(graph->get(), distances->get(), igraph_vss_vector(sources.get()),
                         igraph_vss_all(), IGRAPH_OUT);
        return distances;
      },
      [](const auto& distances) {
        double sum = 0;
        const igraph_vector_t& all = distances->get()->data;
        for (igraph_integer_t i = 0; i < igraph_vector_size(&all); ++i) {
          if (VECTOR(all)[i] < IGRAPH_INFINITY) sum += VECTOR(all)[i];
        }
        return sum;
      });
  return true;
}

// Its own algorithm, whose tolerance is 1e-10.
bool measureRanks(const Arguments& arguments, Measurement& measurement) {
  const auto graph = graphOf(edgesOf(arguments));
  RealVector ranks;
  measurement.time(
      [&] {
        igraph_pagerank(graph->get(), IGRAPH_PAGERANK_ALGO_PRPACK, ranks.get(), nullptr,
                        igraph_vss_all(), IGRAPH_UNDIRECTED, 0.85, nullptr, nullptr);
        return Done();
      },
      [&](Done) { return ranks[0] * 1e12; });
  return true;
}

bool measureTransitivity(const Arguments& arguments, Measurement& measurement) {
  const auto graph = graphOf(edgesOf(arguments));
  measurement.time(
      [&] {
        igraph_real_t value = 0;
        igraph_transitivity_undirected(graph->get(), &value, IGRAPH_TRANSITIVITY_ZERO);
        return value;
      },
      [](igraph_real_t value) { return value * 1e9; });
  return true;
}

bool measureCores(const Arguments& arguments, Measurement& measurement) {
  const auto graph = graphOf(edgesOf(arguments));
  IntVector cores;
  measurement.time(
      [&] {
        igraph_coreness(graph->get(), cores.get(), IGRAPH_ALL);
        return Done();
      },
      [&](Done) { return igraph_vector_int_max(cores.get()); });
  return true;
}

bool measureLabels(const Arguments& arguments, Measurement& measurement) {
  const auto graph = graphOf(edgesOf(arguments));
  IntVector labels;
  IntVector sizes;
  measurement.time(
      [&] {
        igraph_connected_components(graph->get(), labels.get(), sizes.get(), nullptr, IGRAPH_WEAK);
        return Done();
      },
      [&](Done) { return sizes.size(); });
  return true;
}

}  // namespace

std::vector<Task> questionTasks() {
  return {{"distances", measureDistances},
          {"pagerank", measureRanks},
          {"transitivity", measureTransitivity},
          {"cores", measureCores},
          {"labels", measureLabels}};
}

}  // namespace bench
