/// \file
/// igraph 0.10 with owners for what it allocates. The vector that igraph_create wants is filled
/// outside the timing.
#pragma once

#include <igraph/igraph.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "program.hpp"
#include "workload.hpp"

namespace bench {

class IntVector {
 public:
  explicit IntVector(std::uint64_t size = 0) {
    igraph_vector_int_init(&vector_, static_cast<igraph_integer_t>(size));
  }
  ~IntVector() { igraph_vector_int_destroy(&vector_); }
  IntVector(const IntVector&) = delete;
  IntVector& operator=(const IntVector&) = delete;

  [[nodiscard]] igraph_vector_int_t* get() { return &vector_; }
  [[nodiscard]] std::uint64_t size() const {
    return static_cast<std::uint64_t>(igraph_vector_int_size(&vector_));
  }
  igraph_integer_t& operator[](std::uint64_t index) { return VECTOR(vector_)[index]; }

 private:
  igraph_vector_int_t vector_;
};

class RealVector {
 public:
  explicit RealVector(std::uint64_t size = 0) {
    igraph_vector_init(&vector_, static_cast<igraph_integer_t>(size));
  }
  explicit RealVector(const std::vector<float>& values) : RealVector(values.size()) {
    std::copy(values.begin(), values.end(), VECTOR(vector_));
  }
  ~RealVector() { igraph_vector_destroy(&vector_); }
  RealVector(const RealVector&) = delete;
  RealVector& operator=(const RealVector&) = delete;

  [[nodiscard]] igraph_vector_t* get() { return &vector_; }
  igraph_real_t& operator[](std::uint64_t index) { return VECTOR(vector_)[index]; }

 private:
  igraph_vector_t vector_;
};

class Graph {
 public:
  /// `make` fills an igraph_t.
  template <class Make>
  explicit Graph(Make make) {
    make(&graph_);
  }
  ~Graph() { igraph_destroy(&graph_); }
  Graph(const Graph&) = delete;
  Graph& operator=(const Graph&) = delete;

  [[nodiscard]] igraph_t* get() { return &graph_; }
  [[nodiscard]] igraph_integer_t edges() const { return igraph_ecount(&graph_); }
  [[nodiscard]] igraph_integer_t size() const { return igraph_vcount(&graph_) + edges(); }

 private:
  igraph_t graph_;
};

template <class Make>
std::unique_ptr<Graph> made(Make make) {
  return std::make_unique<Graph>(make);
}

inline void fillEnds(IntVector& ends, const Edges& edges) {
  for (std::uint64_t i = 0; i < edges.count(); ++i) {
    ends[2 * i] = static_cast<igraph_integer_t>(edges.from[i]);
    ends[2 * i + 1] = static_cast<igraph_integer_t>(edges.to[i]);
  }
}

inline std::unique_ptr<Graph> graphOf(IntVector& ends, const Edges& edges, bool directed) {
  return made([&](igraph_t* graph) {
    igraph_create(graph, ends.get(), static_cast<igraph_integer_t>(edges.vertices), directed);
  });
}

inline std::unique_ptr<Graph> graphOf(const Edges& edges) {
  IntVector ends(2 * edges.count());
  fillEnds(ends, edges);
  return graphOf(ends, edges, false);
}

/// Distances, ranks, triangles, cores and components.
std::vector<Task> questionTasks();

}  // namespace bench
