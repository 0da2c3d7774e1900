#include "veq/base/internal/memory_limit.hpp"

#include <algorithm>
#include <cstddef>
#include <fstream>

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

// Of a group and those that it is a part of.
std::uint64_t limitOfGroups(const std::string& mount, std::string group, const char* file) {
  std::uint64_t limit = UINT64_MAX;
  for (;;) {
    limit = std::min(limit, limitIn(mount + group + file));
    const std::size_t end = group.rfind('/');
    if (end == std::string::npos) return limit;
    group.resize(end);
  }
}

}  // namespace

std::uint64_t memoryLimit() {
  static const std::uint64_t limit =
      std::min(machineMemory(), controlGroupLimit("/proc/self/cgroup", "/sys/fs/cgroup"));
  return limit;
}

std::uint64_t controlGroupLimit(const std::string& list, const std::string& mount) {
  std::uint64_t limit = UINT64_MAX;
  std::ifstream lines(list);
  // A line is "number:controllers:group"; version 2 has one hierarchy, without names of
  // controllers.
  for (std::string line; std::getline(lines, line);) {
    const std::size_t first = line.find(':');
    const std::size_t second = first == std::string::npos ? first : line.find(':', first + 1);
    if (second == std::string::npos) continue;
    const std::string controllers = ',' + line.substr(first + 1, second - first - 1) + ',';
    const std::string group = line.substr(second + 1);
    if (controllers == ",,") limit = std::min(limit, limitOfGroups(mount, group, "/memory.max"));
    if (controllers.find(",memory,") != std::string::npos) {
      limit = std::min(limit, limitOfGroups(mount + "/memory", group, "/memory.limit_in_bytes"));
    }
  }
  return limit;
}

}  // namespace veq::internal
