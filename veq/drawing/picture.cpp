#include "veq/drawing/picture.hpp"

#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <utility>
#include <vector>

#include "veq/base/files.hpp"
#include "veq/drawing/internal/colors.hpp"
#include "veq/drawing/internal/page_columns.hpp"
#include "veq/drawing/internal/page_texts.hpp"
#include "veq/drawing/internal/placement.hpp"

namespace veq {
namespace {

using internal::PageColumn;
using internal::Point;

constexpr std::uint64_t kMostElements = 20'000;
constexpr std::uint64_t kMostLabels = 100;
/// All is drawn in whole numbers, which every program writes and reads alike.
constexpr double kSide = 10'000.0;
constexpr int kMargin = 400;

Error wrong(std::string text) { return {ErrorKind::kArgument, std::move(text)}; }

template <class T>
std::vector<double> asDoubles(const std::vector<T>& values) {
  return {values.begin(), values.end()};
}

// Where each number stands between the least and the largest finite one; NaN where it is none.
std::vector<double> shares(const std::vector<double>& numbers) {
  double least = INFINITY;
  double most = -INFINITY;
  for (const double number : numbers) {
    if (!std::isfinite(number)) continue;
    least = std::min(least, number);
    most = std::max(most, number);
  }
  std::vector<double> all;
  for (const double number : numbers) {
    const double share = most > least ? (number - least) / (most - least) : 0.5;
    all.push_back(std::isnan(number) ? number : std::clamp(share, 0.0, 1.0));
  }
  return all;
}

Result<std::vector<std::string>> classColors(const PageColumn& column) {
  std::unordered_map<std::string, std::uint64_t> numbers;
  std::vector<std::string> colors;
  for (const auto& text : column.texts) {
    if (!text) {
      colors.emplace_back("#cccccc");
      continue;
    }
    const std::uint64_t number = numbers.emplace(*text, numbers.size()).first->second;
    if (number < internal::kClassColors) colors.push_back(internal::classColor(number));
  }
  if (numbers.size() <= internal::kClassColors) return colors;
  return wrong("column " + column.key + ": " + std::to_string(numbers.size()) +
               " different texts are more than there are colours (" +
               std::to_string(internal::kClassColors) + ")");
}

std::vector<std::string> scaleColors(const std::vector<double>& numbers) {
  std::vector<std::string> colors;
  for (const double share : shares(numbers)) {
    colors.push_back(std::isnan(share) ? "#cccccc" : internal::scaleColor(share));
  }
  return colors;
}

Result<std::vector<std::string>> colorsOf(const Network& network, const std::string& color) {
  if (color.empty()) return std::vector<std::string>(network.countVertices(), "#21618c");
  if (color == "degree") return scaleColors(asDoubles(network.degrees(Direction::kAll)));
  const std::optional<PageColumn> column = internal::pageColumn(network, color);
  if (!column) return wrong("no column " + color);
  if (column->isNumber) return scaleColors(column->numbers);
  return classColors(*column);
}

Result<std::vector<double>> sizesOf(const Network& network, const std::string& size) {
  if (size == "constant") return std::vector<double>(network.countVertices(), 0.0);
  if (size == "strength") return network.strengths(Direction::kAll);
  if (size.empty() || size == "degree") return asDoubles(network.degrees(Direction::kAll));
  const std::optional<PageColumn> column = internal::pageColumn(network, size);
  if (!column) return wrong("no column " + size);
  if (!column->isNumber) return wrong("column " + size + ": sizes need numbers");
  return column->numbers;
}

// The area grows with the number.
std::vector<int> radiiOf(const std::vector<double>& sizes) {
  const double usual =
      std::clamp(kSide * 0.2 / std::sqrt(static_cast<double>(sizes.size()) + 1.0), 15.0, 120.0);
  std::vector<int> radii;
  for (const double share : shares(sizes)) {
    const double scale = std::isnan(share) ? 0.5 : 0.5 + 1.5 * std::sqrt(share);
    radii.push_back(static_cast<int>(usual * scale + 0.5));
  }
  return radii;
}

struct Dot {
  int x = 0;
  int y = 0;
  int radius = 0;
  std::string color;
};

class Picture {
 public:
  Picture(const Network& network, const std::string& title) : network_(network) {
    const std::string side = number(static_cast<int>(kSide) + 2 * kMargin);
    text_ = "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " + side + " " + side +
            "\" width=\"1000\" height=\"1000\" role=\"img\">\n<title>" +
            internal::markupText(title) + "</title>\n<rect width=\"" + side + "\" height=\"" +
            side + "\" fill=\"#ffffff\"/>\n";
  }

  std::string draw(const std::vector<Dot>& dots) {
    const std::vector<std::uint64_t> sources = network_.sources();
    const std::vector<std::uint64_t> targets = network_.targets();
    const double count = static_cast<double>(sources.size()) + 1.0;
    const int width = static_cast<int>(std::clamp(600.0 / std::sqrt(count), 3.0, 20.0));
    text_ += "<g stroke=\"#8a8a8a\" stroke-opacity=\"0.5\" fill=\"none\" stroke-width=\"" +
             number(width) + "\">\n";
    for (std::size_t e = 0; e < sources.size(); ++e) edge(dots[sources[e]], dots[targets[e]]);
    text_ += "</g>\n<g stroke=\"#ffffff\" stroke-width=\"8\">\n";
    const std::vector<std::string> names = network_.names();
    for (std::size_t v = 0; v < dots.size(); ++v) vertex(dots[v], names[v]);
    text_ += "</g>\n";
    if (dots.size() <= kMostLabels) labels(dots, names);
    return std::move(text_ += "</svg>\n");
  }

 private:
  static std::string number(int value) { return std::to_string(value); }

  void edge(const Dot& from, const Dot& to) {
    if (&from == &to) {
      text_ += "<circle cx=\"" + number(from.x) + "\" cy=\"" + number(from.y - from.radius) +
               "\" r=\"" + number(from.radius) + "\"/>\n";
      return;
    }
    text_ += "<line x1=\"" + number(from.x) + "\" y1=\"" + number(from.y) + "\" x2=\"" +
             number(to.x) + "\" y2=\"" + number(to.y) + "\"/>\n";
    if (network_.isDirected()) arrival(from, to);
  }

  // A point on the edge, just before its target.
  void arrival(const Dot& from, const Dot& to) {
    const double dx = from.x - to.x;
    const double dy = from.y - to.y;
    const double length = std::sqrt(dx * dx + dy * dy);
    const double share = std::min((to.radius + 30.0) / std::max(length, 1.0), 1.0);
    text_ += "<circle cx=\"" + number(static_cast<int>(std::lround(to.x + dx * share))) +
             "\" cy=\"" + number(static_cast<int>(std::lround(to.y + dy * share))) +
             "\" r=\"18\" fill=\"#5a5a5a\"/>\n";
  }

  void vertex(const Dot& dot, const std::string& name) {
    text_ += "<circle cx=\"" + number(dot.x) + "\" cy=\"" + number(dot.y) + "\" r=\"" +
             number(dot.radius) + "\" fill=\"" + dot.color + "\"><title>" +
             internal::markupText(name) + "</title></circle>\n";
  }

  void labels(const std::vector<Dot>& dots, const std::vector<std::string>& names) {
    text_ += "<g font-family=\"sans-serif\" font-size=\"130\" fill=\"#222222\">\n";
    for (std::size_t v = 0; v < dots.size(); ++v) {
      text_ += "<text x=\"" + number(dots[v].x + dots[v].radius + 20) + "\" y=\"" +
               number(dots[v].y + 45) + "\">" + internal::markupText(names[v]) + "</text>\n";
    }
    text_ += "</g>\n";
  }

  const Network& network_;
  std::string text_;
};

}  // namespace

Result<std::string> svgOf(const Network& network, const PictureOptions& options) {
  const std::uint64_t n = network.countVertices();
  const std::uint64_t m = network.countEdges();
  if (n > kMostElements || m > kMostElements - n) {
    return wrong(std::to_string(n) + " vertices and " + std::to_string(m) +
                 " edges are more than a picture shows (" + std::to_string(kMostElements) +
                 "): write a page, or choose some");
  }
  Result<std::vector<std::string>> colors = colorsOf(network, options.color);
  if (!colors) return colors.error();
  const Result<std::vector<double>> sizes = sizesOf(network, options.size);
  if (!sizes) return sizes.error();
  const auto placement = internal::placementOf(network, options.layout, options.progress);
  if (!placement) return placement.error();
  const std::vector<int> radii = radiiOf(sizes.value());
  std::vector<Dot> dots;
  for (std::uint64_t v = 0; v < n; ++v) {
    const Point point = placement.value().points[v];
    dots.push_back({kMargin + static_cast<int>(point.x * kSide + 0.5),
                    kMargin + static_cast<int>((1.0 - point.y) * kSide + 0.5), radii[v],
                    std::move(colors.value()[v])});
  }
  return Picture(network, options.title).draw(dots);
}

Outcome writeSvg(std::string_view path, const Network& network, const PictureOptions& options) {
  const Result<std::string> picture = svgOf(network, options);
  if (!picture) return picture.error();
  return writeFile(path, picture.value());
}

}  // namespace veq
