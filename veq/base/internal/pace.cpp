#include "veq/base/internal/pace.hpp"

#include <new>
#include <stdexcept>

namespace veq::internal {

void Pace::tell(std::uint64_t done) {
  const Clock::time_point now = Clock::now();
  if (now - last_ < usualInterval) return;
  last_ = now;
  try {
    progress_.observer(done, all_);
  } catch (...) {
    throw ObserverThrew{std::current_exception()};
  }
}

Error endOfWork() {
  try {
    throw;
  } catch (const Stopped&) {
    return {ErrorKind::kStopped, "stopped"};
  } catch (const ObserverThrew& observer) {
    std::rethrow_exception(observer.thrown);
  } catch (const std::length_error&) {
    throw std::bad_alloc();
  }
}

}  // namespace veq::internal
