/// \file
/// How much memory there is.
#pragma once

#include <cstdint>
#include <string>

namespace veq::internal {

/// The memory of this machine in bytes, or of the control groups that this process is in, where one
/// of them is allowed less; the size of the largest object where the system says nothing. Asked for
/// once.
[[nodiscard]] std::uint64_t memoryLimit();

/// The least that any of the control groups in such a list as /proc/self/cgroup is allowed, or
/// UINT64_MAX; `mount` is the folder where they are told. Groups that are not there, as those above
/// a container, say nothing.
[[nodiscard]] std::uint64_t controlGroupLimit(const std::string& list, const std::string& mount);

}  // namespace veq::internal
