#include "igraph_graph.hpp"

namespace bench {
namespace {

const auto kCountEdges = [](const std::unique_ptr<Graph>& graph) { return graph->edges(); };
const auto kSize = [](const std::unique_ptr<Graph>& graph) { return graph->size(); };

bool measureBuild(const Arguments& arguments, Measurement& measurement) {
  const Edges edges = edgesOf(arguments);
  IntVector ends(2 * edges.count());
  fillEnds(ends, edges);
  measurement.timeAndWeigh(
      "bytes_per_edge", edges.count(),
      [&] { return graphOf(ends, edges, arguments.count("dir") != 0); }, kCountEdges);
  return true;
}

bool measureDegrees(const Arguments& arguments, Measurement& measurement) {
  const auto graph = graphOf(edgesOf(arguments));
  IntVector degrees;
  measurement.time(
      [&] {
        igraph_degree(graph->get(), degrees.get(), igraph_vss_all(), IGRAPH_ALL, IGRAPH_LOOPS);
        return Done();
      },
      [&](Done) { return degrees[0]; });
  return true;
}

bool measureStrengths(const Arguments& arguments, Measurement& measurement) {
  const Edges edges = edgesOf(arguments, true);
  const auto graph = graphOf(edges);
  RealVector weights(edges.weights);
  RealVector strengths;
  measurement.time(
      [&] {
        igraph_strength(graph->get(), strengths.get(), igraph_vss_all(), IGRAPH_ALL, IGRAPH_LOOPS,
                        weights.get());
        return Done();
      },
      [&](Done) { return strengths[0]; });
  return true;
}

bool measureMatrix(const Arguments& arguments, Measurement& measurement) {
  const auto graph = graphOf(edgesOf(arguments));
  igraph_matrix_t matrix;
  igraph_matrix_init(&matrix, 0, 0);
  measurement.time(
      [&] {
        igraph_get_adjacency(graph->get(), &matrix, IGRAPH_GET_ADJACENCY_BOTH, nullptr,
                             IGRAPH_LOOPS_TWICE);
        return Done();
      },
      [&](Done) { return igraph_matrix_sum(&matrix); });
  igraph_matrix_destroy(&matrix);
  return true;
}

bool measureSplit(const Arguments& arguments, Measurement& measurement) {
  const auto graph = graphOf(edgesOf(arguments));
  struct Parts {
    Parts() { igraph_graph_list_init(&list, 0); }
    ~Parts() { igraph_graph_list_destroy(&list); }
    igraph_graph_list_t list;
  };
  measurement.time(
      [&] {
        auto parts = std::make_unique<Parts>();
        igraph_decompose(graph->get(), &parts->list, IGRAPH_WEAK, -1, 0);
        return parts;
      },
      [](const auto& parts) { return igraph_graph_list_size(&parts->list); });
  return true;
}

/// The labels, and the subgraph of the vertices with the most frequent one.
std::unique_ptr<Graph> largestPart(Graph& graph) {
  IntVector labels;
  IntVector sizes;
  igraph_connected_components(graph.get(), labels.get(), sizes.get(), nullptr, IGRAPH_WEAK);
  const igraph_integer_t largest = igraph_vector_int_which_max(sizes.get());
  IntVector members;
  igraph_vector_int_reserve(members.get(), sizes[static_cast<std::uint64_t>(largest)]);
  for (std::uint64_t v = 0; v < labels.size(); ++v) {
    if (labels[v] == largest) {
      igraph_vector_int_push_back(members.get(), static_cast<igraph_integer_t>(v));
    }
  }
  return made([&](igraph_t* part) {
    igraph_induced_subgraph(graph.get(), part, igraph_vss_vector(members.get()),
                            IGRAPH_SUBGRAPH_AUTO);
  });
}

bool measureLargest(const Arguments& arguments, Measurement& measurement) {
  const auto graph = graphOf(edgesOf(arguments));
  measurement.time([&] { return largestPart(*graph); }, kCountEdges);
  return true;
}

bool measureWalk(const Arguments& arguments, Measurement& measurement) {
  const Edges edges = edgesOf(arguments);
  const auto graph = graphOf(edges);
  const std::uint64_t agents = arguments.count("A", 1);
  const std::uint64_t steps = arguments.count("S", 1000);
  const std::vector<std::uint64_t> starts = startsOf(edges, agents);
  std::vector<std::uint64_t> visits(edges.vertices);
  IntVector path;
  measurement.time(
      [&] {
        for (const std::uint64_t start : starts) {
          igraph_random_walk(graph->get(), nullptr, path.get(), nullptr,
                             static_cast<igraph_integer_t>(start), IGRAPH_ALL,
                             static_cast<igraph_integer_t>(steps), IGRAPH_RANDOM_WALK_STUCK_RETURN);
          for (std::uint64_t i = 1; i < path.size(); ++i) {
            ++visits[static_cast<std::uint64_t>(path[i])];
          }
        }
        return Done();
      },
      [&](Done) { return visits.back(); });
  measurement.addNanoseconds("ns_per_step", static_cast<double>(agents * steps));
  return true;
}

bool measurePreferentialAttachment(const Arguments& arguments, Measurement& measurement) {
  const std::string name = arguments.text("algo", "bag");
  const igraph_barabasi_algorithm_t algorithm = name == "bag" ? IGRAPH_BARABASI_BAG
                                                : name == "multi"
                                                    ? IGRAPH_BARABASI_PSUMTREE_MULTIPLE
                                                    : IGRAPH_BARABASI_PSUMTREE;
  const auto n = static_cast<igraph_integer_t>(arguments.count("n", 100'000));
  const auto m = static_cast<igraph_integer_t>(arguments.count("m", 4));
  measurement.time(
      [&] {
        return made([&](igraph_t* graph) {
          igraph_barabasi_game(graph, n, 1.0, m, nullptr, true, 1.0, false, algorithm, nullptr);
        });
      },
      kCountEdges);
  return true;
}

bool measureUniformNetwork(const Arguments& arguments, Measurement& measurement) {
  const std::uint64_t n = arguments.count("n", 10'000);
  const double probability = arguments.real("k", 10) / static_cast<double>(n);
  measurement.time(
      [&] {
        return made([&](igraph_t* graph) {
          igraph_erdos_renyi_game_gnp(graph, static_cast<igraph_integer_t>(n), probability, false,
                                      false);
        });
      },
      kCountEdges);
  return true;
}

bool measureGnm(const Arguments& arguments, Measurement& measurement) {
  const std::uint64_t n = arguments.count("n", 100'000);
  const auto m = static_cast<igraph_integer_t>(n * arguments.count("k", 10) / 2);
  measurement.time(
      [&] {
        return made([&](igraph_t* graph) {
          igraph_erdos_renyi_game_gnm(graph, static_cast<igraph_integer_t>(n), m, false, false);
        });
      },
      kCountEdges);
  return true;
}

bool measureConfiguration(const Arguments& arguments, Measurement& measurement) {
  const auto degrees = degreesAround(arguments.count("n", 100'000), arguments.count("k", 10));
  IntVector given(degrees.size());
  for (std::uint64_t v = 0; v < degrees.size(); ++v) {
    given[v] = static_cast<igraph_integer_t>(degrees[v]);
  }
  const igraph_degseq_t method =
      arguments.has("simple") ? IGRAPH_DEGSEQ_VL : IGRAPH_DEGSEQ_CONFIGURATION;
  measurement.time(
      [&] {
        return made([&](igraph_t* graph) {
          igraph_degree_sequence_game(graph, given.get(), nullptr, method);
        });
      },
      kCountEdges);
  return true;
}

bool measureWattsStrogatz(const Arguments& arguments, Measurement& measurement) {
  const auto n = static_cast<igraph_integer_t>(arguments.count("n", 100'000));
  const auto k = static_cast<igraph_integer_t>(arguments.count("k", 10) / 2);
  const double p = arguments.real("p", 0.1);
  const bool multiple = arguments.has("multiple");
  measurement.time(
      [&] {
        return made([&](igraph_t* graph) {
          igraph_watts_strogatz_game(graph, 1, n, k, p, false, multiple);
        });
      },
      kCountEdges);
  return true;
}

template <class Read>
bool measureReading(const Arguments& arguments, Measurement& measurement, Read read) {
  const std::string path = arguments.text("file");
  measurement.time(
      [&] {
        return made([&](igraph_t* graph) {
          std::FILE* file = std::fopen(path.c_str(), "r");
          read(graph, file);
          std::fclose(file);
        });
      },
      kSize);
  measurement.addMegabytesPerSecond(bytesOfFile(path));
  return true;
}

bool readPajek(const Arguments& arguments, Measurement& measurement) {
  return measureReading(arguments, measurement, [](igraph_t* graph, std::FILE* file) {
    igraph_read_graph_pajek(graph, file);
  });
}

bool readEdgeList(const Arguments& arguments, Measurement& measurement) {
  return measureReading(arguments, measurement, [](igraph_t* graph, std::FILE* file) {
    igraph_read_graph_ncol(graph, file, nullptr, true, IGRAPH_ADD_WEIGHTS_YES, false);
  });
}

bool readIndices(const Arguments& arguments, Measurement& measurement) {
  return measureReading(arguments, measurement, [](igraph_t* graph, std::FILE* file) {
    igraph_read_graph_edgelist(graph, file, 0, false);
  });
}

bool readGraphMl(const Arguments& arguments, Measurement& measurement) {
  return measureReading(arguments, measurement, [](igraph_t* graph, std::FILE* file) {
    igraph_read_graph_graphml(graph, file, 0);
  });
}

bool readGml(const Arguments& arguments, Measurement& measurement) {
  return measureReading(arguments, measurement, [](igraph_t* graph, std::FILE* file) {
    igraph_read_graph_gml(graph, file);
  });
}

/// With the name of each vertex under `nameKey`, and weights.
void addAttributes(Graph& graph, const Edges& edges, const char* nameKey) {
  igraph_strvector_t names;
  igraph_strvector_init(&names, static_cast<igraph_integer_t>(edges.vertices));
  for (std::uint64_t v = 0; v < edges.vertices; ++v) {
    igraph_strvector_set(&names, static_cast<igraph_integer_t>(v), nameOf(v).c_str());
  }
  SETVASV(graph.get(), nameKey, &names);
  igraph_strvector_destroy(&names);
  RealVector weights(edges.weights);
  SETEANV(graph.get(), "weight", weights.get());
}

template <class Write>
bool measureWriting(const Arguments& arguments, Measurement& measurement, const char* nameKey,
                    Write write) {
  const Edges edges = edgesOf(arguments, true);
  const auto graph = graphOf(edges);
  addAttributes(*graph, edges, nameKey);
  const std::string path = arguments.text("out");
  measurement.time(
      [&] {
        std::FILE* file = std::fopen(path.c_str(), "w");
        const auto status = write(graph->get(), file);
        std::fclose(file);
        return status;
      },
      [](igraph_error_t status) { return status == IGRAPH_SUCCESS; });
  measurement.addMegabytesPerSecond(bytesOfFile(path));
  return true;
}

bool writePajek(const Arguments& arguments, Measurement& measurement) {
  return measureWriting(arguments, measurement, "id", [](igraph_t* graph, std::FILE* file) {
    return igraph_write_graph_pajek(graph, file);
  });
}

bool writeEdgeList(const Arguments& arguments, Measurement& measurement) {
  return measureWriting(arguments, measurement, "name", [](igraph_t* graph, std::FILE* file) {
    return igraph_write_graph_ncol(graph, file, nullptr, "weight");
  });
}

}  // namespace
}  // namespace bench

int main(int count, char** values) {
  using namespace bench;
  igraph_set_attribute_table(&igraph_cattribute_table);
  igraph_rng_seed(igraph_rng_default(), 42);
  std::vector<Task> tasks{{"build", measureBuild},
                          {"degrees", measureDegrees},
                          {"strengths", measureStrengths},
                          {"adjmat", measureMatrix},
                          {"decompose", measureSplit},
                          {"largest", measureLargest},
                          {"walk", measureWalk},
                          {"ba", measurePreferentialAttachment},
                          {"gnp", measureUniformNetwork},
                          {"model_gnp", measureUniformNetwork},
                          {"model_gnm", measureGnm},
                          {"model_configuration", measureConfiguration},
                          {"model_ws", measureWattsStrogatz},
                          {"read_pajek", readPajek},
                          {"write_pajek", writePajek},
                          {"read_edges", readEdgeList},
                          {"read_indices", readIndices},
                          {"read_graphml", readGraphMl},
                          {"read_gml", readGml},
                          {"write_edges", writeEdgeList}};
  const std::vector<Task> questions = questionTasks();
  tasks.insert(tasks.end(), questions.begin(), questions.end());
  return run(count, values, tasks);
}
