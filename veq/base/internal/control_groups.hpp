/// \file
/// The control groups in which Linux keeps a process within limits.
#pragma once

#include <string>
#include <vector>

namespace veq::internal {

/// The folders that tell of a controller's limits for this process: those of the groups in such a
/// list as /proc/self/cgroup, each followed by those that it is a part of. `mount` is the folder
/// under which they lie. Groups that are not there, as those above a container, say nothing.
[[nodiscard]] std::vector<std::string> controlGroups(const std::string& list,
                                                     const std::string& mount,
                                                     const std::string& controller);

}  // namespace veq::internal
