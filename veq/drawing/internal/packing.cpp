#include "veq/drawing/internal/packing.hpp"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace veq::internal {
namespace {

/// What finding room for a box may take, where an edge takes 1.
constexpr std::uint64_t kPiecesOfBox = 256;

// What lies below free room, from left to right: where each level begins, and how high it is.
class Skyline {
 public:
  explicit Skyline(double width) : width_(width), steps_{{0.0, 0.0}} {}

  Point place(const Box& box) {
    std::size_t best = 0;
    double lowest = heightOver(0, box.width);
    for (std::size_t i = 1; i < steps_.size(); ++i) {
      if (steps_[i].y >= lowest || steps_[i].x + box.width > width_) continue;
      const double height = heightOver(i, box.width);
      if (height >= lowest) continue;
      lowest = height;
      best = i;
    }
    const Point corner{steps_[best].x, lowest};
    raise(best, corner.x + box.width, lowest + box.height);
    return corner;
  }

 private:
  [[nodiscard]] double endOf(std::size_t step) const {
    return step + 1 < steps_.size() ? steps_[step + 1].x : width_;
  }

  [[nodiscard]] double heightOver(std::size_t step, double width) const {
    const double end = steps_[step].x + width;
    double height = 0.0;
    for (; step < steps_.size() && steps_[step].x < end; ++step) {
      height = std::max(height, steps_[step].y);
    }
    return height;
  }

  // From the beginning of a step on.
  void raise(std::size_t step, double end, double height) {
    std::size_t last = step;
    while (last + 1 < steps_.size() && steps_[last + 1].x <= end) ++last;
    const Point rest{end, steps_[last].y};
    const bool isLeft = end < endOf(last);
    steps_[step].y = height;
    const auto first = steps_.begin() + static_cast<std::ptrdiff_t>(step) + 1;
    const auto behind = steps_.erase(first, steps_.begin() + static_cast<std::ptrdiff_t>(last) + 1);
    if (isLeft) steps_.insert(behind, rest);
    if (step > 0 && steps_[step - 1].y == height) {
      steps_.erase(steps_.begin() + static_cast<std::ptrdiff_t>(step));
    }
  }

  double width_;
  std::vector<Point> steps_;
};

}  // namespace

std::vector<Point> packed(std::span<const Box> boxes, Pace* pace) {
  double area = 0.0;
  double widest = 0.0;
  for (const Box& box : boxes) {
    area += box.width * box.height;
    widest = std::max(widest, box.width);
  }
  std::vector<std::size_t> order(boxes.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t a, std::size_t b) { return boxes[a].height > boxes[b].height; });
  // Some room stays between boxes.
  Skyline skyline(std::max(widest, std::sqrt(area * 1.1)));
  std::vector<Point> corners(boxes.size());
  SparsePace asked(pace);
  for (const std::size_t box : order) {
    asked.ask(kPiecesOfBox);
    corners[box] = skyline.place(boxes[box]);
  }
  return corners;
}

}  // namespace veq::internal
