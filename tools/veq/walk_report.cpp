#include "walk_report.hpp"

#include <algorithm>
#include <numeric>
#include <ostream>
#include <utility>

#include "network_files.hpp"
#include "table.hpp"
#include "text.hpp"
#include "vertex_names.hpp"

namespace veq::tool {
namespace {

constexpr auto kChoice = "published";

std::uint64_t reachedBy(const WalkReport& report) {
  return static_cast<std::uint64_t>(std::count_if(report.visits.begin(), report.visits.end(),
                                                  [](std::int64_t count) { return count > 0; }));
}

std::string startsText(const WalkReport& report) {
  if (!report.starts.empty()) return "starting at " + shortened(printable(report.starts), 60);
  return "agent i starting at vertex i";
}

std::string memoryText(const WalkReport& report) {
  if (!report.memory) return "none";
  std::string text =
      counted(*report.memory, "visit", "visits") + ", errors " + Data(report.errors).plain();
  if (!report.agentsFile.empty()) text += ", agents linked as in " + printable(report.agentsFile);
  return text;
}

std::string stepsText(const WalkReport& report) {
  std::string text = std::to_string(report.steps);
  const bool early = report.target || report.interrupted;
  text += early ? " of at most " + counted(report.stepsAsked, "step", "steps")
                : std::string(report.steps == 1 ? " step" : " steps");
  text += report.agents == 1 ? "" : " each";
  if (report.target)
    text += ", until reaching " + percentage(static_cast<double>(*report.target), 1);
  if (report.interrupted) text += ", interrupted";
  return text;
}

std::string reachText(const WalkReport& report) {
  const std::uint64_t n = report.network->countVertices();
  const double share = static_cast<double>(reachedBy(report)) / static_cast<double>(n);
  std::string text = std::to_string(reachedBy(report)) + " of " + counted(n, "vertex", "vertices") +
                     " (" + percentage(share, 1) + ")";
  if (report.target && share < static_cast<double>(*report.target)) {
    text += ", less than was asked for";
  }
  return text;
}

void writeSummary(const WalkReport& report, std::ostream& out) {
  out << "network  " << printable(report.networkFile) << ": " << sizeText(*report.network) << '\n'
      << "agents   " << report.agents << ", " << startsText(report) << '\n'
      << "memory   " << memoryText(report) << '\n'
      << "walk     " << stepsText(report) << ", choice " << kChoice << ", seed " << report.seed
      << '\n'
      << "reached  " << reachText(report) << '\n';
}

/// The most visited vertices, of equals the lower index first.
std::vector<std::uint64_t> mostVisited(const std::vector<std::int64_t>& visits,
                                       std::uint64_t count) {
  std::vector<std::uint64_t> order(visits.size());
  std::iota(order.begin(), order.end(), std::uint64_t{0});
  const auto rows = static_cast<std::ptrdiff_t>(std::min<std::uint64_t>(count, order.size()));
  std::partial_sort(order.begin(), order.begin() + rows, order.end(),
                    [&visits](std::uint64_t a, std::uint64_t b) {
                      return std::pair(-visits[a], a) < std::pair(-visits[b], b);
                    });
  order.resize(static_cast<std::size_t>(rows));
  return order;
}

double sumOf(const std::vector<std::int64_t>& visits) {
  return std::accumulate(visits.begin(), visits.end(), 0.0);
}

void writeTable(const WalkReport& report, std::uint64_t top, std::ostream& out) {
  const VEQNetwork& network = *report.network;
  const bool directed = network.isDirected();
  const double all = sumOf(report.visits);
  const double ends = 2 * static_cast<double>(network.countEdges());
  Table table(directed
                  ? std::vector<std::string>{"vertex", "out-degree", "in-degree", "visits", "share"}
                  : std::vector<std::string>{"vertex", "degree", "visits", "share", "degree/2m"});
  for (const std::uint64_t vertex : mostVisited(report.visits, top)) {
    const std::uint64_t degree = network.countEdgesOfVertexAtIndex(vertex);
    std::vector<std::string> row{printable(vertexName(network, vertex)), std::to_string(degree)};
    if (directed) row.push_back(std::to_string(network.countInEdgesOfVertexAtIndex(vertex)));
    row.push_back(std::to_string(report.visits[vertex]));
    row.push_back(percentage(static_cast<double>(report.visits[vertex]), all));
    if (!directed) row.push_back(percentage(static_cast<double>(degree), ends));
    table.addRow(std::move(row));
  }
  out << '\n' << table;
}

Data share(double part, double whole) { return whole == 0 ? Data() : Data(part / whole); }

Records recordsOf(const WalkReport& report, std::uint64_t top) {
  const VEQNetwork& network = *report.network;
  const bool directed = network.isDirected();
  const double all = sumOf(report.visits);
  const double ends = 2 * static_cast<double>(network.countEdges());
  Records records(
      directed
          ? std::vector<std::string>{"index", "name", "outDegree", "inDegree", "visits", "share"}
          : std::vector<std::string>{"index", "name", "degree", "visits", "share", "degreeShare"});
  for (const std::uint64_t vertex : mostVisited(report.visits, top)) {
    const std::uint64_t degree = network.countEdgesOfVertexAtIndex(vertex);
    std::vector<Data> row{vertex, vertexName(network, vertex), degree};
    if (directed) row.emplace_back(network.countInEdgesOfVertexAtIndex(vertex));
    row.emplace_back(report.visits[vertex]);
    row.push_back(share(static_cast<double>(report.visits[vertex]), all));
    if (!directed) row.push_back(share(static_cast<double>(degree), ends));
    records.add(std::move(row));
  }
  return records;
}

Data dataOf(const WalkReport& report, std::uint64_t top) {
  return Data::object()
      .set("network", report.networkFile)
      .set("vertices", report.network->countVertices())
      .set("edges", report.network->countEdges())
      .set("directed", report.network->isDirected())
      .set("agents", report.agents)
      .set("starts", report.starts.empty() ? Data() : Data(report.starts))
      .set("memory", report.memory ? Data(*report.memory) : Data())
      .set("errors", report.errors)
      .set("agentsNetwork", report.agentsFile.empty() ? Data() : Data(report.agentsFile))
      .set("stepsAsked", report.stepsAsked)
      .set("steps", report.steps)
      .set("untilReach", report.target ? Data(*report.target) : Data())
      .set("interrupted", report.interrupted)
      .set("choice", kChoice)
      .set("seed", report.seed)
      .set("reached", reachedBy(report))
      .set("visits", recordsOf(report, top).asList());
}

}  // namespace

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
