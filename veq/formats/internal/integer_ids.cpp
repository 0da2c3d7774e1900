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

void widen(Range& range, const RawVector<std::uint64_t>& numbers) {
  for (const std::uint64_t number : numbers) {
    range.least = std::min(range.least, static_cast<std::int64_t>(number));
    range.most = std::max(range.most, static_cast<std::int64_t>(number));
  }
}

/// By a table over the range of the numbers.
RawVector<std::int64_t> numberByTable(RawVector<std::uint64_t>& from, RawVector<std::uint64_t>& to,
                                      Range range) {
  const auto least = static_cast<std::uint64_t>(range.least);
  Block<std::uint32_t> table(static_cast<std::uint64_t>(range.most) - least + 1);
  for (const std::uint64_t number : from) table[number - least] = 1;
  for (const std::uint64_t number : to) table[number - least] = 1;
  RawVector<std::int64_t> distinct;
  for (std::uint64_t place = 0; place < table.size(); ++place) {
    if (table[place] == 0) continue;
    table[place] = static_cast<std::uint32_t>(distinct.size());
    distinct.push_back(static_cast<std::int64_t>(least + place));
  }
  for (std::uint64_t& number : from) number = table[number - least];
  for (std::uint64_t& number : to) number = table[number - least];
  return distinct;
}

RawVector<std::int64_t> numberBySorting(RawVector<std::uint64_t>& from,
                                        RawVector<std::uint64_t>& to) {
  RawVector<std::int64_t> distinct;
  distinct.reserve(from.size() + to.size());
  for (const RawVector<std::uint64_t>* ends : {&from, &to}) {
    for (const std::uint64_t end : *ends) distinct.push_back(static_cast<std::int64_t>(end));
  }
  std::sort(distinct.begin(), distinct.end());
  distinct.erase(std::unique(distinct.begin(), distinct.end()), distinct.end());
  const auto indexOf = [&](std::uint64_t number) {
    return static_cast<std::uint64_t>(
        std::lower_bound(distinct.begin(), distinct.end(), static_cast<std::int64_t>(number)) -
        distinct.begin());
  };
  for (std::uint64_t& number : from) number = indexOf(number);
  for (std::uint64_t& number : to) number = indexOf(number);
  return distinct;
}

}  // namespace

RawVector<std::int64_t> numberVertices(RawVector<std::uint64_t>& from,
                                       RawVector<std::uint64_t>& to) {
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

}  // namespace veq::internal
