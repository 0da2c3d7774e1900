/// \file
/// What this process may run on.
#pragma once

#include <string>

namespace veq::internal {

/// How many processors the process may use at once, at least 1: those it may run on, or as many as
/// the quota of its control groups fills, rounded up.
[[nodiscard]] unsigned usableProcessors();

/// The least quota that any of the control groups in such a list as /proc/self/cgroup has, in
/// processors, rounded up; a very large number where there is none. See controlGroupLimit().
[[nodiscard]] unsigned controlGroupProcessors(const std::string& list, const std::string& mount);

/// The system's number for this process, by which a forked child knows itself; 0 where there is
/// none.
[[nodiscard]] long processNumber();

}  // namespace veq::internal
