#include "veq/base/internal/team.hpp"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "veq/base/internal/blocked_signals.hpp"
#include "veq/base/internal/own_parallelism.hpp"
#include "veq/base/internal/processors.hpp"
#include "veq/base/ownership.hpp"
#include "veq/base/parallelism.hpp"

namespace veq {
namespace internal {
namespace {

// More are a mistake, and would be asked of the system one by one.
constexpr unsigned kMostThreads = 1024;

// 0 until somebody asks how many processors there are, which means reading files.
std::atomic<unsigned> threadsOfProcess{1};
// Of what this thread is doing; 0 where it has no number of its own.
thread_local unsigned threadsOfCall = 0;

// A runner may be set while others run, which keep it. Where none is, nobody takes the lock: who
// was forked while another thread held it would wait for ever.
struct LentRunner {
  std::mutex lock;
  std::atomic<bool> isThere{false};
  Shared<const ParallelRunner> runner;
};
// Never destroyed, for static objects may work when they are. Without an allocation, which might
// fail where nothing may be thrown and would be lost when a shared object is unloaded.
template <class T, class... Arguments>
T& lasting(Arguments... arguments) {
  alignas(T) static unsigned char memory[sizeof(T)];
  static auto* const made = new (memory) T(arguments...);
  return *made;
}
LentRunner& lentRunner() { return lasting<LentRunner>(); }

Shared<const ParallelRunner> currentRunner() {
  LentRunner& lent = lentRunner();
  if (!lent.isThere.load(std::memory_order_acquire)) return nullptr;
  const std::lock_guard guard(lent.lock);
  return lent.runner;
}

// What pieces throw: of the lowest.
class Failure {
 public:
  void note(std::uint64_t piece, std::exception_ptr thrown) {
    if (thrown_ && piece > piece_) return;
    piece_ = piece;
    thrown_ = std::move(thrown);
  }
  [[nodiscard]] bool isNoted() const { return thrown_ != nullptr; }
  void rethrow() {
    if (thrown_) std::rethrow_exception(std::exchange(thrown_, nullptr));
  }

 private:
  std::uint64_t piece_ = 0;
  std::exception_ptr thrown_;
};

template <class Work>
std::exception_ptr thrownBy(Work work) noexcept {
  try {
    work();
  } catch (...) {
    return std::current_exception();
  }
  return nullptr;
}

}  // namespace

// Pieces are large, so that one lock for all that the threads share is no hindrance. They are
// handed out in order: when one has thrown, all below it have been.
struct Team::Crew {
  explicit Crew(unsigned helpers)
      : process(processNumber()),
        looks(helpers < std::thread::hardware_concurrency() ? kLooks : 0) {
    // A signal is for the threads of the program.
    const BlockedSignals blocked;
    try {
      threads.reserve(helpers);
      while (threads.size() < helpers) threads.emplace_back([this] { help(); });
    } catch (const std::system_error&) {  // there are as many as the system gives
    } catch (const std::bad_alloc&) {
    }
  }
  ~Crew() {
    {
      const std::lock_guard guard(lock);
      isOver = true;
      ++changes;
    }
    thereIsWork.notify_all();
    for (std::thread& thread : threads) thread.join();
  }
  Crew(const Crew&) = delete;
  Crew& operator=(const Crew&) = delete;

  /// The first piece is this thread's, as it keeps the lock until it has taken it.
  void run(std::uint64_t count, Task shared) {
    std::unique_lock held(lock);
    task = shared;
    next = 0;
    pieces = count;
    ++changes;
    thereIsWork.notify_all();
    takePieces(held);
    wait(held, allIsDone, [this] { return underWay == 0; });
    failure.rethrow();
  }

  void help() {
    std::unique_lock held(lock);
    for (;;) {
      wait(held, thereIsWork, [this] { return isOver || next < pieces; });
      if (isOver) return;
      takePieces(held);
      if (underWay != 0) continue;
      ++changes;
      allIsDone.notify_one();
    }
  }

  // To wake a thread takes as long as many a piece, so whoever waits first looks for a while
  // whether something has changed, where each thread has a processor to itself.
  template <class Condition>
  void wait(std::unique_lock<std::mutex>& held, std::condition_variable& signal, Condition isMet) {
    for (unsigned look = 0; look < looks && !isMet();) {
      const unsigned seen = changes.load(std::memory_order_relaxed);
      held.unlock();
      while (++look < looks && changes.load(std::memory_order_relaxed) == seen) {
        std::this_thread::yield();
      }
      held.lock();
    }
    signal.wait(held, isMet);
  }

  void takePieces(std::unique_lock<std::mutex>& held) {
    while (next < pieces) {
      const std::uint64_t piece = next++;
      const Task now = task;
      ++underWay;
      held.unlock();
      std::exception_ptr thrown = thrownBy([&] { now(piece); });
      held.lock();
      --underWay;
      if (!thrown) continue;
      failure.note(piece, std::move(thrown));
      pieces = next;
    }
  }

  // Each takes a third of a microsecond, all together about as long as being woken.
  static constexpr unsigned kLooks = 300;

  const long process;  // a forked child has none of the threads
  const unsigned looks;
  std::mutex lock;
  std::atomic<unsigned> changes{0};  // of what is waited for; made under the lock
  std::condition_variable thereIsWork;
  std::condition_variable allIsDone;
  Task task;
  std::uint64_t next = 0;
  std::uint64_t pieces = 0;
  std::uint64_t underWay = 0;
  Failure failure;
  bool isOver = false;
  std::vector<std::thread> threads;  // of help()
};

namespace {

// What a runner leaves out, or leaves by an exception, this thread does; what it calls twice is
// done once.
template <class Task>
void shareBy(const ParallelRunner& runner, std::uint64_t pieces, Task task) {
  auto isTaken =
      orNothing([=] { return std::vector<std::atomic<bool>>(static_cast<std::size_t>(pieces)); });
  if (isTaken.empty()) {
    for (std::uint64_t i = 0; i < pieces; ++i) task(i);
    return;
  }
  std::mutex lock;
  Failure failure;
  const auto take = [&](std::size_t piece) {
    if (piece >= isTaken.size() || isTaken[piece].exchange(true, std::memory_order_relaxed)) return;
    if (std::exception_ptr thrown = thrownBy([&] { task(piece); })) {
      const std::lock_guard guard(lock);
      failure.note(piece, std::move(thrown));
    }
  };
  static_cast<void>(thrownBy([&] { runner(isTaken.size(), take); }));
  for (std::size_t piece = 0; piece < isTaken.size(); ++piece) take(piece);
  failure.rethrow();
}

}  // namespace

unsigned resolvedThreads(unsigned threads) {
  return std::min(threads == 0 ? usableProcessors() : threads, kMostThreads);
}

OwnParallelism::OwnParallelism(std::optional<unsigned> threads) : before_(threadsOfCall) {
  if (threads) threadsOfCall = resolvedThreads(*threads);
}
OwnParallelism::~OwnParallelism() { threadsOfCall = before_; }

// Whoever was forked while helpers were at rest has nobody to wait for.
void Team::Dismissal::operator()(Crew* crew) const {
  if (crew->process == processNumber()) delete crew;
}

Team& Team::alone() { return lasting<Team>(1U); }

void Team::share(std::uint64_t pieces, Task task, bool firstIsMine) {
  if (const Shared<const ParallelRunner> runner = currentRunner()) {
    if (!firstIsMine) return shareBy(*runner, pieces, task);
    task(0);
    task.first = 1;
    return shareBy(*runner, pieces - 1, task);
  }
  if (crew_ && crew_->process != processNumber()) crew_.reset();
  if (!crew_) {
    const auto helpers = static_cast<unsigned>(std::min<std::uint64_t>(threads_, pieces) - 1);
    crew_.reset(orNothing([=] { return new Crew(helpers); }));
  }
  if (crew_) return crew_->run(pieces, task);
  for (std::uint64_t i = 0; i < pieces; ++i) task(i);
}

}  // namespace internal

void setParallelism(unsigned threads) {
  internal::threadsOfProcess.store(threads, std::memory_order_relaxed);
}

unsigned parallelism() {
  if (internal::threadsOfCall != 0) return internal::threadsOfCall;
  unsigned threads = internal::threadsOfProcess.load(std::memory_order_relaxed);
  const unsigned resolved = internal::resolvedThreads(threads);
  // Unless another number has been set meanwhile.
  if (threads == 0) internal::threadsOfProcess.compare_exchange_strong(threads, resolved);
  return resolved;
}

void setParallelRunner(ParallelRunner runner) {
  Shared<const ParallelRunner> made =
      runner ? std::make_shared<const ParallelRunner>(std::move(runner)) : nullptr;
  internal::LentRunner& lent = internal::lentRunner();
  const std::lock_guard guard(lent.lock);
  std::swap(lent.runner, made);  // what it was is destroyed outside the lock
  lent.isThere.store(lent.runner != nullptr, std::memory_order_release);
}

}  // namespace veq
