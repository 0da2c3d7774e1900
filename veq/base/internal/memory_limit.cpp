#include "veq/base/internal/memory_limit.hpp"

#include <algorithm>
#include <cstddef>
#include <fstream>

#include "veq/base/internal/control_groups.hpp"

#if defined(__linux__)
#include <unistd.h>
#endif

namespace veq::internal {
namespace {

std::uint64_t machineMemory() {
#if defined(_SC_PHYS_PAGES) && defined(_SC_PAGESIZE)
  const long pages = sysconf(_SC_PHYS_PAGES);
  const long pageSize = sysconf(_SC_PAGESIZE);
  if (pages > 0 && pageSize > 0) {
    const std::uint64_t all =
        static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(pageSize);
    return std::min<std::uint64_t>(all, PTRDIFF_MAX);  // One object can have no more.
  }
#endif
  return PTRDIFF_MAX;
}

// The number in a file; UINT64_MAX where there is none, or the word for no limit.
std::uint64_t limitIn(const std::string& path) {
  std::ifstream file(path);
  std::uint64_t limit = 0;
  return file >> limit ? limit : UINT64_MAX;
}

}  // namespace

std::uint64_t memoryLimit() {
  static const std::uint64_t limit =
      std::min(machineMemory(), controlGroupLimit("/proc/self/cgroup", "/sys/fs/cgroup"));
  return limit;
}

std::uint64_t controlGroupLimit(const std::string& list, const std::string& mount) {
  std::uint64_t limit = UINT64_MAX;
  for (const std::string& group : controlGroups(list, mount, "memory")) {
    limit = std::min(
        {limit, limitIn(group + "/memory.max"), limitIn(group + "/memory.limit_in_bytes")});
  }
  return limit;
}

}  // namespace veq::internal
