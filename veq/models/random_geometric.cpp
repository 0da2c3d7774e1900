// Random geometric networks. All is done with coordinates of 31 bits, whose squared distances fit
// into 64: links depend on no rounding. The first coordinates of a vertex are the two draws of its
// first number, the third one is the first draw of another.

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "veq/models/internal/generating.hpp"
#include "veq/numeric/vector_arrays.hpp"

namespace veq {
namespace {

using internal::DrawBlocks;
using internal::GrowingEnds;
using internal::namedNumber;
using internal::Pace;

constexpr std::uint64_t kSide = std::uint64_t{1} << 31;
constexpr std::uint64_t kVerticesPerLook = 4096;
constexpr double kPi = 3.141592653589793;

using Point = std::array<std::uint32_t, 3>;

std::uint64_t power(std::uint64_t base, unsigned exponent) {
  std::uint64_t result = 1;
  for (unsigned i = 0; i < exponent; ++i) result *= base;
  return result;
}

// Vertices in cells no narrower than the radius, so that links lead to neighbouring cells at most.
class Cells {
 public:
  Cells(const std::vector<Point>& places, std::uint64_t radius, unsigned dimensions)
      : places_(places), radius_(radius), dimensions_(dimensions) {
    const std::uint64_t most = kSide / std::max<std::uint64_t>(radius, 1);
    while (along_ < most && power(along_ + 1, dimensions) <= places.size()) ++along_;
    width_ = (kSide + along_ - 1) / along_;
    starts_.resize(power(along_, dimensions) + 1);
    for (const Point& place : places) ++starts_[cellOf(place) + 1];
    for (std::size_t c = 1; c < starts_.size(); ++c) starts_[c] += starts_[c - 1];
    members_.resize(places.size());
    std::vector<std::uint64_t> next(starts_.begin(), starts_.end() - 1);
    for (std::uint64_t v = 0; v < places.size(); ++v) members_[next[cellOf(places[v])]++] = v;
  }

  /// The vertices behind this one that are near it, ascending.
  void findLater(std::uint64_t vertex, std::vector<std::uint64_t>& found) const {
    found.clear();
    const Point& place = places_[vertex];
    Point low{};
    Point high{};
    for (unsigned d = 0; d < dimensions_; ++d) {
      const std::uint64_t cell = place[d] / width_;
      low[d] = static_cast<std::uint32_t>(cell == 0 ? 0 : cell - 1);
      high[d] = static_cast<std::uint32_t>(std::min(cell + 1, along_ - 1));
    }
    for (std::uint64_t z = low[2]; z <= high[2]; ++z) {
      for (std::uint64_t y = low[1]; y <= high[1]; ++y) {
        const std::uint64_t row = (z * along_ + y) * along_;
        // The cells of a row lie one behind the other.
        for (std::uint64_t i = starts_[row + low[0]]; i < starts_[row + high[0] + 1]; ++i) {
          const std::uint64_t other = members_[i];
          if (other > vertex && areNear(place, places_[other])) found.push_back(other);
        }
      }
    }
    std::sort(found.begin(), found.end());
  }

 private:
  [[nodiscard]] std::uint64_t cellOf(const Point& place) const {
    std::uint64_t cell = 0;
    for (unsigned d = dimensions_; d-- > 0;) cell = cell * along_ + place[d] / width_;
    return cell;
  }
  [[nodiscard]] bool areNear(const Point& a, const Point& b) const {
    std::uint64_t sum = 0;
    for (unsigned d = 0; d < dimensions_; ++d) {
      const std::uint64_t distance = a[d] > b[d] ? a[d] - b[d] : b[d] - a[d];
      sum += distance * distance;
    }
    return sum <= radius_ * radius_;
  }

  const std::vector<Point>& places_;
  std::uint64_t radius_;
  unsigned dimensions_;
  std::uint64_t along_ = 1;
  std::uint64_t width_ = 0;
  std::vector<std::uint64_t> starts_;
  std::vector<std::uint64_t> members_;
};

std::vector<Point> drawnPlaces(std::uint64_t n, unsigned dimensions, DrawBlocks& draws) {
  std::vector<Point> places(n);
  for (Point& place : places) {
    const std::uint64_t plane = draws.next();
    place[0] = static_cast<std::uint32_t>(plane >> 31);
    place[1] = static_cast<std::uint32_t>(plane % kSide);
    if (dimensions == 3) place[2] = static_cast<std::uint32_t>(draws.next() >> 31);
  }
  return places;
}

Shared<PropertyColumn> positionsOf(const std::vector<Point>& places, unsigned dimensions) {
  const auto coordinate = [](std::uint32_t number) { return number * 0x1p-31; };
  if (dimensions == 2) {
    Shared<VEQVector2dArray> column =
        VEQVector2dArray::initWithSize_precision(places.size(), kDoublePrecision);
    for (std::uint64_t v = 0; v < places.size(); ++v) {
      column->setVector_atIndex({coordinate(places[v][0]), coordinate(places[v][1])}, v);
    }
    return column;
  }
  Shared<VEQVector3dArray> column =
      VEQVector3dArray::initWithSize_precision(places.size(), kDoublePrecision);
  for (std::uint64_t v = 0; v < places.size(); ++v) {
    const Point& place = places[v];
    column->setVector_atIndex({coordinate(place[0]), coordinate(place[1]), coordinate(place[2])},
                              v);
  }
  return column;
}

double expectedEdges(std::uint64_t n, double radius, unsigned dimensions) {
  const double volume =
      dimensions == 2 ? kPi * radius * radius : 4.0 / 3.0 * kPi * radius * radius * radius;
  return std::min(volume, 1.0) * static_cast<double>(n) * static_cast<double>(n - 1) / 2;
}

}  // namespace

Result<Network> geometricNetwork(std::uint64_t n, double radius, const ModelOptions& options,
                                 unsigned dimensions) {
  if (auto error = internal::countError(n, internal::kMostPaired)) return *error;
  if (dimensions != 2 && dimensions != 3) {
    return internal::argumentError("dimensions = " + std::to_string(dimensions) + ": give 2 or 3");
  }
  if (!(radius >= 0.0 && radius <= 2.0)) {
    return internal::argumentError(namedNumber("radius", radius) + ": give 0 to 2");
  }
  if (auto error =
          internal::memoryError(namedNumber("n", n) + ", " + namedNumber("radius", radius),
                                static_cast<double>(n), expectedEdges(n, radius, dimensions), 64)) {
    return *error;
  }
  return internal::generated(options, [&](DrawBlocks& draws) {
    Pace pace(options.progress, n);
    const std::vector<Point> places = drawnPlaces(n, dimensions, draws);
    // Beyond the diagonal all is near; what is less than 2^32 has a square of 64 bits.
    const auto whole = static_cast<std::uint64_t>(radius * 0x1p31);
    const Cells cells(places, std::min<std::uint64_t>(whole, UINT32_MAX), dimensions);
    GrowingEnds ends;
    std::vector<std::uint64_t> near;
    for (std::uint64_t v = 0; v < n; ++v) {
      if (v % kVerticesPerLook == 0) pace.reach(v);
      cells.findLater(v, near);
      for (const std::uint64_t other : near) ends.add(v, other);
    }
    internal::NetworkDraft draft = internal::draftOf(n, std::move(ends));
    draft.properties.vertices.set("Position", positionsOf(places, dimensions));
    return draft;
  });
}

}  // namespace veq
