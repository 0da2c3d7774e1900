#include "veq/formats/internal/integer_ids.hpp"

#include <algorithm>
#include <atomic>
#include <initializer_list>
#include <limits>
#include <mutex>

#include "veq/base/internal/atomic_ref.hpp"
#include "veq/base/internal/memory.hpp"
#include "veq/base/internal/tiled_work.hpp"

namespace veq::internal {
namespace {

struct Range {
  std::int64_t least = std::numeric_limits<std::int64_t>::max();
  std::int64_t most = std::numeric_limits<std::int64_t>::min();
};

/// Calls f(begin, end) for addresses of some of the numbers, on all threads.
template <class F>
void forEachShare(RawVector<std::uint64_t>& numbers, Team& team, F f) {
  constexpr std::uint64_t kTile = std::uint64_t{1} << 16;
  std::uint64_t* const first = numbers.data();
  forEachSharedTile(numbers.size(), kTile, team, nullptr,
                    [&](std::uint64_t begin, std::uint64_t end) { f(first + begin, first + end); });
}

Range rangeOf(const std::uint64_t* begin, const std::uint64_t* end) {
  Range range;
  for (; begin != end; ++begin) {
    range.least = std::min(range.least, static_cast<std::int64_t>(*begin));
    range.most = std::max(range.most, static_cast<std::int64_t>(*begin));
  }
  return range;
}

Range rangeOf(std::initializer_list<RawVector<std::uint64_t>*> lists, Team& team) {
  Range all;
  std::mutex lock;
  for (RawVector<std::uint64_t>* const numbers : lists) {
    forEachShare(*numbers, team, [&](const std::uint64_t* begin, const std::uint64_t* end) {
      const Range range = rangeOf(begin, end);
      const std::lock_guard guard(lock);
      all.least = std::min(all.least, range.least);
      all.most = std::max(all.most, range.most);
    });
  }
  return all;
}

/// By a table over the range of the numbers.
RawVector<std::int64_t> numberByTable(RawVector<std::uint64_t>& from, RawVector<std::uint64_t>& to,
                                      Range range, Team& team) {
  const auto least = static_cast<std::uint64_t>(range.least);
  Block<std::uint32_t> table(static_cast<std::uint64_t>(range.most) - least + 1);
  for (RawVector<std::uint64_t>* const numbers : {&from, &to}) {
    forEachShare(*numbers, team, [&](const std::uint64_t* at, const std::uint64_t* end) {
      for (; at != end; ++at) {
        AtomicRef<std::uint32_t>(table[*at - least]).store(1, std::memory_order_relaxed);
      }
    });
  }
  RawVector<std::int64_t> distinct;
  for (std::uint64_t place = 0; place < table.size(); ++place) {
    if (table[place] == 0) continue;
    table[place] = static_cast<std::uint32_t>(distinct.size());
    distinct.push_back(static_cast<std::int64_t>(least + place));
  }
  for (RawVector<std::uint64_t>* const numbers : {&from, &to}) {
    forEachShare(*numbers, team, [&](std::uint64_t* at, const std::uint64_t* end) {
      for (; at != end; ++at) *at = table[*at - least];
    });
  }
  return distinct;
}

RawVector<std::int64_t> numberBySorting(RawVector<std::uint64_t>& from,
                                        RawVector<std::uint64_t>& to, Team& team) {
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
  for (RawVector<std::uint64_t>* const numbers : {&from, &to}) {
    forEachShare(*numbers, team, [&](std::uint64_t* at, const std::uint64_t* end) {
      for (; at != end; ++at) *at = indexOf(*at);
    });
  }
  return distinct;
}

}  // namespace

RawVector<std::int64_t> numberVertices(RawVector<std::uint64_t>& from, RawVector<std::uint64_t>& to,
                                       Team& team) {
  if (from.empty()) return {};
  const Range range = rangeOf({&from, &to}, team);
  const std::uint64_t width =
      static_cast<std::uint64_t>(range.most) - static_cast<std::uint64_t>(range.least);
  constexpr std::uint64_t kPlacesAnEnd = 8;
  const bool dense = width / kPlacesAnEnd <= 2 * from.size() && width < UINT32_MAX;
  return dense ? numberByTable(from, to, range, team) : numberBySorting(from, to, team);
}

}  // namespace veq::internal
