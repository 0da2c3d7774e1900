#include "veq/drawing/internal/repulsion.hpp"

#include <algorithm>
#include <array>

namespace veq::internal {
namespace {

/// Squares are halved so often at most, and no further where they hold so few points.
constexpr int kLevels = 16;
constexpr std::uint32_t kLeaf = 8;
/// How large a square may look from where it is one point: its side over the distance.
constexpr double kOpening = 0.9;

// The bits of a number of 16 bits, with a zero before each.
std::uint32_t spread(std::uint32_t bits) {
  bits = (bits | bits << 8) & 0x00FF00FF;
  bits = (bits | bits << 4) & 0x0F0F0F0F;
  bits = (bits | bits << 2) & 0x33333333;
  return (bits | bits << 1) & 0x55555555;
}

std::uint32_t cellOf(double offset, double scale) {
  const double cell = offset * scale;
  return cell < 65535.0 ? static_cast<std::uint32_t>(cell) : 65535U;
}

/// What the force on a point takes, where an edge takes 1.
constexpr std::uint64_t kPiecesOfForce = 16;

/// Of so few each pair is looked at.
constexpr std::size_t kFew = 48;

// Points on one another are driven apart, each pair in a direction of its own.
Point apart(std::uint32_t self, std::uint32_t other) {
  const std::uint32_t low = std::min(self, other) * 2654435761U + std::max(self, other) * 40503U;
  const double sign = self < other ? 1e-3 : -1e-3;
  return {sign * (static_cast<double>(low & 1023) - 511.5) / 512.0,
          sign * (static_cast<double>(low >> 10 & 1023) - 511.5) / 512.0};
}

// How one point of mass 1 is pushed by another.
Point pushOf(Point away, double mass, std::uint32_t self, std::uint32_t other) {
  double square = away.x * away.x + away.y * away.y;
  if (square < 1e-12) {
    away = apart(self, other);
    square = away.x * away.x + away.y * away.y;
  }
  const double push = mass / square;
  return {push * away.x, push * away.y};
}

void addPairs(std::span<const Point> points, std::span<const double> masses,
              std::span<Point> forces) {
  for (std::uint32_t i = 1; i < points.size(); ++i) {
    for (std::uint32_t k = 0; k < i; ++k) {
      const Point away{points[i].x - points[k].x, points[i].y - points[k].y};
      const Point push = pushOf(away, masses[i] * masses[k], i, k);
      forces[i] = {forces[i].x + push.x, forces[i].y + push.y};
      forces[k] = {forces[k].x - push.x, forces[k].y - push.y};
    }
  }
}

}  // namespace

void Repulsion::add(std::span<const Point> points, std::span<const double> masses,
                    std::span<Point> forces, Pace* pace) {
  if (points.size() <= kFew) return addPairs(points, masses, forces);
  sortByPlace(points);
  const auto n = static_cast<std::uint32_t>(points.size());
  points_.resize(n);
  masses_.resize(n);
  for (std::uint32_t i = 0; i < n; ++i) {
    const auto point = static_cast<std::uint32_t>(codes_[i]);
    points_[i] = points[point];
    masses_[i] = masses[point];
  }
  nodes_.clear();
  build(0, n, 0);
  SparsePace asked(pace);
  for (std::uint32_t i = 0; i < n; ++i) {
    asked.ask(kPiecesOfForce);
    const Point force = forceOn(i);
    Point& sum = forces[static_cast<std::uint32_t>(codes_[i])];
    sum.x += masses_[i] * force.x;
    sum.y += masses_[i] * force.y;
  }
}

// By the bits of both coordinates in turn, so that each square is a run of points.
void Repulsion::sortByPlace(std::span<const Point> points) {
  const auto [low, high] = extentOf(points);
  side_ = std::max(high.x - low.x, high.y - low.y);
  const double scale = side_ > 0.0 ? 65536.0 / side_ : 0.0;
  codes_.resize(points.size());
  spare_.resize(points.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    const std::uint64_t code = spread(cellOf(points[i].x - low.x, scale)) |
                               spread(cellOf(points[i].y - low.y, scale)) << 1;
    codes_[i] = code << 32 | i;
  }
  for (unsigned shift = 32; shift < 64; shift += 8) {
    std::array<std::size_t, 257> starts{};
    for (const std::uint64_t code : codes_) ++starts[(code >> shift & 255) + 1];
    for (std::size_t i = 1; i < starts.size(); ++i) starts[i] += starts[i - 1];
    for (const std::uint64_t code : codes_) spare_[starts[code >> shift & 255]++] = code;
    codes_.swap(spare_);
  }
}

void Repulsion::build(std::uint32_t begin, std::uint32_t end, int level) {
  const auto self = static_cast<std::uint32_t>(nodes_.size());
  const bool isLeaf = end - begin <= kLeaf || level == kLevels;
  double side = side_;
  for (int i = 0; i < level; ++i) side *= 0.5;
  nodes_.push_back({0.0, 0.0, 0.0, side / kOpening * (side / kOpening), begin, end, 0});
  double x = 0.0;
  double y = 0.0;
  double mass = 0.0;
  const auto gather = [&](double px, double py, double pMass) {
    x += pMass * px;
    y += pMass * py;
    mass += pMass;
  };
  if (isLeaf) {
    for (std::uint32_t i = begin; i < end; ++i) gather(points_[i].x, points_[i].y, masses_[i]);
  } else {
    const unsigned shift = 62U - 2U * static_cast<unsigned>(level);
    for (std::uint32_t i = begin; i < end;) {
      const std::uint64_t quarter = codes_[i] >> shift;
      const auto last =
          std::partition_point(codes_.begin() + i, codes_.begin() + end,
                               [&](std::uint64_t code) { return code >> shift == quarter; });
      const auto childEnd = static_cast<std::uint32_t>(last - codes_.begin());
      const std::size_t child = nodes_.size();
      build(i, childEnd, level + 1);
      gather(nodes_[child].x, nodes_[child].y, nodes_[child].mass);
      i = childEnd;
    }
  }
  Node& node = nodes_[self];
  node.x = x / mass;
  node.y = y / mass;
  node.mass = mass;
  node.next = static_cast<std::uint32_t>(nodes_.size());
}

Point Repulsion::forceOn(std::uint32_t point) const {
  const Point at = points_[point];
  Point force;
  const auto end = static_cast<std::uint32_t>(nodes_.size());
  for (std::uint32_t i = 0; i < end;) {
    const Node& node = nodes_[i];
    const double dx = at.x - node.x;
    const double dy = at.y - node.y;
    const double square = dx * dx + dy * dy;
    const bool isInside = point >= node.begin && point < node.end;
    if (square > node.farSquare && !isInside) {
      const double push = node.mass / square;
      force.x += push * dx;
      force.y += push * dy;
      i = node.next;
      continue;
    }
    if (node.next != ++i) continue;
    for (std::uint32_t k = node.begin; k < node.end; ++k) {
      if (k == point) continue;
      const Point push =
          pushOf({at.x - points_[k].x, at.y - points_[k].y}, masses_[k],
                 static_cast<std::uint32_t>(codes_[point]), static_cast<std::uint32_t>(codes_[k]));
      force = {force.x + push.x, force.y + push.y};
    }
  }
  return force;
}

}  // namespace veq::internal
