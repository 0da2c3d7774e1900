#include "veq/formats/internal/integer_ids.hpp"

#include <algorithm>
#include <limits>

#include "veq/base/internal/memory.hpp"

namespace veq::internal {
namespace {

struct Range {
  std::int64_t least = std::numeric_limits<std::int64_t>::max();
  std::int64_t most = std::numeric_limits<std::int64_t>::min();
};

void widen(Range& range, const RawVector<std::int64_t>& numbers) {
  for (const std::int64_t number : numbers) {
    range.least = std::min(range.least, number);
    range.most = std::max(range.most, number);
  }
}

/// By a table over the range of the numbers.
RawVector<std::int64_t> numberByTable(RawVector<std::int64_t>& from, RawVector<std::int64_t>& to,
                                      Range range) {
  const auto placeOf = [&](std::int64_t number) {
    return static_cast<std::uint64_t>(number) - static_cast<std::uint64_t>(range.least);
  };
  Block<std::uint32_t> table(placeOf(range.most) + 1);
  for (const std::int64_t number : from) table[placeOf(number)] = 1;
  for (const std::int64_t number : to) table[placeOf(number)] = 1;
  RawVector<std::int64_t> distinct;
  for (std::uint64_t place = 0; place < table.size(); ++place) {
    if (table[place] == 0) continue;
    table[place] = static_cast<std::uint32_t>(distinct.size());
    distinct.push_back(range.least + static_cast<std::int64_t>(place));
  }
  for (std::int64_t& number : from) number = table[placeOf(number)];
  for (std::int64_t& number : to) number = table[placeOf(number)];
  return distinct;
}

RawVector<std::int64_t> numberBySorting(RawVector<std::int64_t>& from,
                                        RawVector<std::int64_t>& to) {
  RawVector<std::int64_t> distinct(from);
  distinct.insert(distinct.end(), to.begin(), to.end());
  std::sort(distinct.begin(), distinct.end());
  distinct.erase(std::unique(distinct.begin(), distinct.end()), distinct.end());
  const auto indexOf = [&](std::int64_t number) {
    return std::lower_bound(distinct.begin(), distinct.end(), number) - distinct.begin();
  };
  for (std::int64_t& number : from) number = indexOf(number);
  for (std::int64_t& number : to) number = indexOf(number);
  return distinct;
}

}  // namespace

RawVector<std::int64_t> numberVertices(RawVector<std::int64_t>& from, RawVector<std::int64_t>& to) {
  if (from.empty()) return {};
  Range range;
  widen(range, from);
  widen(range, to);
  const std::uint64_t width =
      static_cast<std::uint64_t>(range.most) - static_cast<std::uint64_t>(range.least);
  constexpr std::uint64_t kPlacesAnEnd = 8;
  const bool dense = width / kPlacesAnEnd <= 2 * from.size() && width < UINT32_MAX;
  return dense ? numberByTable(from, to, range) : numberBySorting(from, to);
}

RawVector<std::uint64_t> asIndices(const RawVector<std::int64_t>& numbers) {
  RawVector<std::uint64_t> indices(numbers.size());
  std::transform(numbers.begin(), numbers.end(), indices.begin(),
                 [](std::int64_t number) { return static_cast<std::uint64_t>(number); });
  return indices;
}

}  // namespace veq::internal
