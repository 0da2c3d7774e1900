#include "veq/drawing/internal/force_steps.hpp"

#include <algorithm>
#include <cmath>

namespace veq::internal {
namespace {

/// Below so many vertices a graph is laid out at once.
constexpr std::uint32_t kSmall = 24;

// Numbers from -1 to 1, the same everywhere (SplitMix64).
class Jitter {
 public:
  explicit Jitter(std::uint64_t seed) : state_(seed) {}

  double next() {
    state_ += 0x9E3779B97F4A7C15;
    std::uint64_t bits = state_;
    bits = (bits ^ bits >> 30) * 0xBF58476D1CE4E5B9;
    bits = (bits ^ bits >> 27) * 0x94D049BB133111EB;
    bits ^= bits >> 31;
    return static_cast<double>(bits >> 11) * 0x1p-52 - 1.0;
  }
  Point nextPoint(double scale) {
    const double x = next();
    return {scale * x, scale * next()};
  }

 private:
  std::uint64_t state_;
};

// One graph and its forces.
class Forces {
 public:
  Forces(const LayoutGraph& graph, std::vector<Point>& points)
      : graph_(graph), points_(points), forces_(points.size()) {}

  // Moves each vertex to where its own forces would be in balance, but no further than so.
  void move(double furthest, Pace& pace) {
    std::fill(forces_.begin(), forces_.end(), Point());
    repulsion_.add(points_, graph_.masses, forces_, &pace);
    for (std::uint32_t v = 0; v < graph_.count(); ++v) {
      const double stiffness = pull(v);
      Point& force = forces_[v];
      force = {force.x / stiffness, force.y / stiffness};
      const double length = std::sqrt(force.x * force.x + force.y * force.y);
      if (length > furthest) {
        force = {force.x * (furthest / length), force.y * (furthest / length)};
      }
    }
    for (std::size_t v = 0; v < points_.size(); ++v) {
      points_[v] = {points_[v].x + forces_[v].x, points_[v].y + forces_[v].y};
    }
  }

 private:
  // Adds the forces of the edges, which grow with the square of their length.
  double pull(std::uint32_t v) {
    const auto neighbours = graph_.neighboursOf(v);
    const auto pulls = graph_.pullsOf(v);
    const Point at = points_[v];
    Point sum;
    double stiffness = 0.0;
    for (std::size_t i = 0; i < neighbours.size(); ++i) {
      const double dx = points_[neighbours[i]].x - at.x;
      const double dy = points_[neighbours[i]].y - at.y;
      const double strength = pulls[i] * std::sqrt(dx * dx + dy * dy);
      sum.x += strength * dx;
      sum.y += strength * dy;
      stiffness += strength;
    }
    forces_[v] = {forces_[v].x + sum.x, forces_[v].y + sum.y};
    return 2.0 * stiffness + 0.1;
  }

  const LayoutGraph& graph_;
  std::vector<Point>& points_;
  std::vector<Point> forces_;
  Repulsion repulsion_;
};

// First far, and less and less.
void settle(const LayoutGraph& graph, std::vector<Point>& points, double furthest,
            std::uint64_t steps, Pace& pace) {
  Forces forces(graph, points);
  for (std::uint64_t step = 0; step < steps; ++step) {
    const double left = static_cast<double>(steps - step) / static_cast<double>(steps);
    forces.move(furthest * left, pace);
    pace.advance(graph.count());
  }
}

// How far apart vertices of an average mass lie, roughly.
double spacing(std::uint64_t finest, std::uint32_t here) {
  return std::sqrt(static_cast<double>(finest) / static_cast<double>(here));
}

}  // namespace

std::uint64_t StepPlan::stepsOf(std::uint64_t vertices, bool coarsest) const {
  if (iterations != 0) return iterations;
  if (coarsest) return std::min<std::uint64_t>(300, 40 + 10 * vertices);
  return std::clamp<std::uint64_t>(2'000'000 / vertices, 30, 150);
}

std::uint64_t StepPlan::workOf(std::uint64_t vertices) const {
  std::uint64_t work = 0;
  for (; vertices > kSmall; vertices /= 2) work += vertices * stepsOf(vertices, false);
  return work + vertices * stepsOf(vertices, true);
}

std::vector<Point> placedByForces(const LayoutGraph& graph, const StepPlan& plan,
                                  std::uint64_t seed, Pace& pace) {
  std::vector<CoarserGraph> levels;
  const auto levelAt = [&](std::size_t level) -> const LayoutGraph& {
    return level == 0 ? graph : levels[level - 1].graph;
  };
  while (levelAt(levels.size()).count() > kSmall) {
    CoarserGraph next = coarser(levelAt(levels.size()), &pace);
    if (next.graph.count() > levelAt(levels.size()).count() / 10 * 9) break;
    levels.push_back(std::move(next));
  }
  Jitter jitter(seed);
  const double side = std::sqrt(static_cast<double>(graph.count()));
  std::vector<Point> points(levelAt(levels.size()).count());
  for (Point& point : points) point = jitter.nextPoint(side);
  for (std::size_t level = levels.size();; --level) {
    const LayoutGraph& here = levelAt(level);
    const bool coarsest = level == levels.size();
    const double furthest = coarsest ? side / 2.0 : spacing(graph.count(), here.count());
    settle(here, points, furthest, plan.stepsOf(here.count(), coarsest), pace);
    if (level == 0) return points;
    const std::vector<std::uint32_t>& coarse = levels[level - 1].coarse;
    const double near = spacing(graph.count(), levelAt(level - 1).count()) / 4.0;
    std::vector<Point> finer(coarse.size());
    for (std::size_t v = 0; v < coarse.size(); ++v) {
      const Point from = points[coarse[v]];
      const Point away = jitter.nextPoint(near);
      finer[v] = {from.x + away.x, from.y + away.y};
    }
    points = std::move(finer);
  }
}

// Sine and cosine of an eighth of the circle at most, by their series, and the rest by turns and
// reflections, since the functions of the C library differ in their last bits.
std::vector<Point> circle(std::uint64_t count) {
  constexpr double kEighth = 0.78539816339744830962;
  std::vector<Point> points(count);
  for (std::uint64_t i = 0; i < count; ++i) {
    const std::uint64_t eighth = 8 * i / count;
    const bool back = eighth % 2 != 0;
    const std::uint64_t rest = 8 * i % count;
    const double angle =
        kEighth * static_cast<double>(back ? count - rest : rest) / static_cast<double>(count);
    double sine = 0.0;
    double cosine = 0.0;
    double term = 1.0;
    for (int k = 0; k < 20; k += 2) {
      cosine += term;
      term = term * angle / (k + 1);
      sine += term;
      term = -term * angle / (k + 2);
    }
    const Point first = back ? Point{sine, cosine} : Point{cosine, sine};
    switch (eighth / 2) {
      case 0:
        points[i] = first;
        break;
      case 1:
        points[i] = {-first.y, first.x};
        break;
      case 2:
        points[i] = {-first.x, -first.y};
        break;
      default:
        points[i] = {first.y, -first.x};
    }
  }
  return points;
}

void turnLevel(std::vector<Point>& points) {
  Point centre;
  for (const Point& point : points) centre = {centre.x + point.x, centre.y + point.y};
  const auto n = static_cast<double>(points.size());
  centre = {centre.x / n, centre.y / n};
  double xx = 0.0;
  double xy = 0.0;
  double yy = 0.0;
  for (Point& point : points) {
    point = {point.x - centre.x, point.y - centre.y};
    xx += point.x * point.x;
    xy += point.x * point.y;
    yy += point.y * point.y;
  }
  // The eigenvector of the larger eigenvalue of [xx xy; xy yy].
  const double half = (xx - yy) / 2.0;
  const double root = std::sqrt(half * half + xy * xy);
  Point axis = half >= 0.0 ? Point{half + root, xy} : Point{xy, root - half};
  const double length = std::sqrt(axis.x * axis.x + axis.y * axis.y);
  if (!(length > 0.0)) return;
  axis = {axis.x / length, axis.y / length};
  for (Point& point : points) {
    point = {axis.x * point.x + axis.y * point.y, axis.x * point.y - axis.y * point.x};
  }
}

}  // namespace veq::internal
