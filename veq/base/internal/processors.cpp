#include "veq/base/internal/processors.hpp"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <fstream>
#include <thread>

#include "veq/base/internal/control_groups.hpp"

#if __has_include(<unistd.h>)
#include <unistd.h>
#endif
#if defined(__linux__)
#include <sched.h>
#endif

namespace veq::internal {
namespace {

unsigned runnableProcessors() {
#if defined(__linux__)
  cpu_set_t processors;
  // Fails where the machine has more than the set can tell.
  if (sched_getaffinity(0, sizeof processors, &processors) == 0) {
    return static_cast<unsigned>(CPU_COUNT(&processors));
  }
#endif
  return std::max(std::thread::hardware_concurrency(), 1U);
}

// Without a quota one file says "max" and the other -1.
unsigned processorsFor(double quota, double period) {
  if (!(quota > 0.0 && period > 0.0)) return UINT_MAX;
  const double processors = quota / period;
  const auto whole = static_cast<unsigned>(std::min(processors, 1e6));
  return whole + (static_cast<double>(whole) < processors ? 1 : 0);
}

double numberIn(const std::string& path) {
  std::ifstream file(path);
  double number = 0.0;
  return file >> number ? number : 0.0;
}

}  // namespace

unsigned controlGroupProcessors(const std::string& list, const std::string& mount) {
  unsigned least = UINT_MAX;
  for (const std::string& group : controlGroups(list, mount, "cpu")) {
    std::ifstream both(group + "/cpu.max");
    double quota = 0.0;
    double period = 0.0;
    if (both >> quota >> period) least = std::min(least, processorsFor(quota, period));
    least = std::min(least, processorsFor(numberIn(group + "/cpu.cfs_quota_us"),
                                          numberIn(group + "/cpu.cfs_period_us")));
  }
  return least;
}

unsigned usableProcessors() {
  return std::min(runnableProcessors(),
                  controlGroupProcessors("/proc/self/cgroup", "/sys/fs/cgroup"));
}

long processNumber() {
#if __has_include(<unistd.h>)
  return static_cast<long>(::getpid());
#else
  return 0;
#endif
}

}  // namespace veq::internal
