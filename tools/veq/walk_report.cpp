#include "walk_report.hpp"

#include <algorithm>
#include <numeric>
#include <ostream>
#include <string_view>
#include <utility>

#include "network_files.hpp"
#include "table.hpp"
#include "text.hpp"
#include "vertex_names.hpp"

namespace veq::tool {
namespace {

std::uint64_t reachedBy(const WalkReport& report) {
  return static_cast<std::uint64_t>(std::count_if(report.visits.begin(), report.visits.end(),
                                                  [](std::uint64_t count) { return count > 0; }));
}

std::string startsText(const WalkReport& report) {
  if (report.starts.empty()) return "agent i starting at vertex i";
  if (report.starts == "uniform") return "starting at vertices drawn each alike";
  if (report.starts == "degree") return "starting at vertices drawn by degree";
  return "starting at " + shortened(printable(report.starts), 60);
}

std::string memoryText(const WalkReport& report) {
  if (!report.memory) return "none";
  std::string text =
      counted(*report.memory, "visit", "visits") + ", errors " + Data(report.errors).plain();
  if (!report.agentsFile.empty()) text += ", agents linked as in " + printable(report.agentsFile);
  return text;
}

/// What made the walk end before all of its steps were made.
std::string_view endText(WalkEnd end) {
  switch (end) {
    case WalkEnd::kStopped:
      return ", interrupted";
    case WalkEnd::kStuck:
      return ", as nobody can move any longer";
    case WalkEnd::kDraws:
      return ", as the substream has no more numbers";
    case WalkEnd::kSteps:
    case WalkEnd::kTarget:
      break;
  }
  return "";
}

std::string stepsText(const WalkReport& report) {
  std::string text = std::to_string(report.steps);
  const bool early = report.target || report.end == WalkEnd::kStopped;
  text += early && report.stepsAsked ? " of at most " + counted(*report.stepsAsked, "step", "steps")
                                     : std::string(report.steps == 1 ? " step" : " steps");
  text += report.agents == 1 ? "" : " each";
  if (report.target) text += ", until reaching " + percentage(*report.target, 1);
  return text.append(endText(report.end));
}

/// How each step was chosen.
std::string lawText(const WalkReport& report) {
  std::string text = ", choice " + report.choice;
  if (report.restart > 0) text += ", restart " + Data(report.restart).plain();
  text += ", seed " + std::to_string(report.seed);
  if (report.substream) text += ", substream " + std::to_string(*report.substream);
  return text;
}

std::string reachText(const WalkReport& report) {
  const std::uint64_t n = report.network.vertices;
  const double share = static_cast<double>(reachedBy(report)) / static_cast<double>(n);
  std::string text = std::to_string(reachedBy(report)) + " of " + counted(n, "vertex", "vertices") +
                     " (" + percentage(share, 1) + ")";
  if (report.target && share < *report.target) {
    text += ", less than was asked for";
  }
  return text;
}

void writeSummary(const WalkReport& report, std::ostream& out) {
  out << "network  " << printable(report.networkFile) << ": "
      << sizeText(report.network.vertices, report.network.edges, report.network.directed) << '\n'
      << "agents   " << report.agents << ", " << startsText(report) << '\n'
      << "memory   " << memoryText(report) << '\n'
      << "walk     " << stepsText(report) << lawText(report) << '\n'
      << "reached  " << reachText(report) << '\n';
}

/// The most visited vertices, of equals the lower index first.
std::vector<std::uint64_t> mostVisited(const std::vector<std::uint64_t>& visits,
                                       std::uint64_t count) {
  std::vector<std::uint64_t> order(visits.size());
  std::iota(order.begin(), order.end(), std::uint64_t{0});
  const auto rows = static_cast<std::ptrdiff_t>(std::min<std::uint64_t>(count, order.size()));
  std::partial_sort(order.begin(), order.begin() + rows, order.end(),
                    [&visits](std::uint64_t a, std::uint64_t b) {
                      return std::pair(visits[b], a) < std::pair(visits[a], b);
                    });
  order.resize(static_cast<std::size_t>(rows));
  return order;
}

double sumOf(const std::vector<std::uint64_t>& visits) {
  return std::accumulate(visits.begin(), visits.end(), 0.0);
}

/// The columns between what a vertex is called and its visits.
std::vector<std::string> degreeColumns(const WalkedOn& network, const char* out, const char* in,
                                       const char* only) {
  if (!network.directed) return {only};
  if (!network.inDegree) return {out};
  return {out, in};
}

void writeTable(const WalkReport& report, std::uint64_t top, std::ostream& out) {
  const WalkedOn& network = report.network;
  const double all = sumOf(report.visits);
  const double ends = 2 * static_cast<double>(network.edges);
  std::vector<std::string> columns{"vertex"};
  for (std::string& column : degreeColumns(network, "out-degree", "in-degree", "degree")) {
    columns.push_back(std::move(column));
  }
  columns.insert(columns.end(), {"visits", "share"});
  if (!network.directed) columns.emplace_back("degree/2m");
  Table table(columns);
  for (const std::uint64_t vertex : mostVisited(report.visits, top)) {
    const std::uint64_t degree = network.degree(vertex);
    std::vector<std::string> row{printable(network.name(vertex)), std::to_string(degree)};
    if (network.directed && network.inDegree) {
      row.push_back(std::to_string(network.inDegree(vertex)));
    }
    row.push_back(std::to_string(report.visits[vertex]));
    row.push_back(percentage(static_cast<double>(report.visits[vertex]), all));
    if (!network.directed) row.push_back(percentage(static_cast<double>(degree), ends));
    table.addRow(std::move(row));
  }
  out << '\n' << table;
}

Data share(double part, double whole) { return whole == 0 ? Data() : Data(part / whole); }

Records recordsOf(const WalkReport& report, std::uint64_t top) {
  const WalkedOn& network = report.network;
  const double all = sumOf(report.visits);
  const double ends = 2 * static_cast<double>(network.edges);
  std::vector<std::string> columns{"index", "name"};
  for (std::string& column : degreeColumns(network, "outDegree", "inDegree", "degree")) {
    columns.push_back(std::move(column));
  }
  columns.insert(columns.end(), {"visits", "share"});
  if (!network.directed) columns.emplace_back("degreeShare");
  Records records(columns);
  for (const std::uint64_t vertex : mostVisited(report.visits, top)) {
    const std::uint64_t degree = network.degree(vertex);
    std::vector<Data> row{vertex, network.name(vertex), degree};
    if (network.directed && network.inDegree) row.emplace_back(network.inDegree(vertex));
    row.emplace_back(report.visits[vertex]);
    row.push_back(share(static_cast<double>(report.visits[vertex]), all));
    if (!network.directed) row.push_back(share(static_cast<double>(degree), ends));
    records.add(std::move(row));
  }
  return records;
}

Data dataOf(const WalkReport& report, std::uint64_t top) {
  return Data::object()
      .set("network", report.networkFile)
      .set("vertices", report.network.vertices)
      .set("edges", report.network.edges)
      .set("directed", report.network.directed)
      .set("agents", report.agents)
      .set("starts", report.starts.empty() ? Data() : Data(report.starts))
      .set("memory", report.memory ? Data(*report.memory) : Data())
      .set("errors", report.errors)
      .set("agentsNetwork", report.agentsFile.empty() ? Data() : Data(report.agentsFile))
      .set("stepsAsked", report.stepsAsked ? Data(*report.stepsAsked) : Data())
      .set("steps", report.steps)
      .set("untilReach", report.target ? Data(*report.target) : Data())
      .set("interrupted", report.end == WalkEnd::kStopped)
      .set("choice", report.choice)
      .set("restart", report.restart)
      .set("seed", report.seed)
      .set("substream", report.substream ? Data(*report.substream) : Data())
      .set("reached", reachedBy(report))
      .set("visits", recordsOf(report, top).asList());
}

}  // namespace

WalkedOn::WalkedOn(const Network& network)
    : vertices(network.countVertices()),
      edges(network.countEdges()),
      directed(network.isDirected()),
      name([network](std::uint64_t v) { return vertexName(*network.published(), v); }),
      degree([network](std::uint64_t v) { return network.degree(v); }),
      inDegree([network](std::uint64_t v) { return network.degree(v, Direction::kIn); }) {}

WalkedOn::WalkedOn(const WalkNetwork& network)
    : vertices(network.countVertices()),
      edges(network.countEdges()),
      directed(network.isDirected()),
      name([](std::uint64_t v) { return std::to_string(v); }),
      degree([network](std::uint64_t v) { return network.degree(v); }) {}

void writeReport(const WalkReport& report, Answer answer, std::optional<std::uint64_t> top,
                 std::ostream& out, std::ostream& aside) {
  if (answer == Answer::kTable) {
    writeSummary(report, out);
    if (top != 0) writeTable(report, top.value_or(10), out);
  } else if (answer == Answer::kCsv) {
    writeSummary(report, aside);
    recordsOf(report, top.value_or(UINT64_MAX)).writeCsv(out);
  } else {
    dataOf(report, top.value_or(UINT64_MAX)).writeJson(out);
  }
}

}  // namespace veq::tool
