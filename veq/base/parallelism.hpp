/// \file
/// How many threads the library's long work may use.
///
/// What is made, counted, drawn or written is the same bit for bit however many there are, and
/// whoever runs them: work is cut where its input says, and its pieces are put together in order.
#pragma once

#include <cstddef>
#include <functional>

#include "veq/base/export.hpp"

namespace veq {

/// Lets long work of this process use so many threads, the calling one among them: 1 at first, and
/// 0 is as many as the process may use, by the processors it may run on and the quota of its
/// control groups. More than the machine has are allowed, up to 1024. Threads that the system does
/// not give are done without. Small work stays on the calling thread, and no thread outlives the
/// call that started it. From any thread; counts for work that begins later. \ingroup long
VEQ_EXPORT void setParallelism(unsigned threads);

/// How many that are, at least 1.
/// \ingroup long
[[nodiscard]] VEQ_EXPORT unsigned parallelism();

/// Calls piece(i) once for each i below `pieces`, in any order and from any threads, and returns
/// when all of these calls have. They throw nothing and wait for nothing. What it leaves out, as
/// where it throws, the calling thread does.
/// \ingroup long
using ParallelRunner =
    std::function<void(std::size_t pieces, const std::function<void(std::size_t)>& piece)>;

/// Has a runner, such as a host's own pool of threads, do the work that would be shared among
/// several threads, of which parallelism() says how many; an empty one gives it back to the
/// library. From any thread; counts for work that begins later. \ingroup long
VEQ_EXPORT void setParallelRunner(ParallelRunner runner);

}  // namespace veq
