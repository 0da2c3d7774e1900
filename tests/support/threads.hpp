#pragma once

#include <atomic>
#include <thread>
#include <vector>

namespace veq::test {

/// Runs `job(number)` in so many threads, which begin at the same time, and waits for their end.
template <class Job>
void inThreads(int count, const Job& job) {
  std::atomic<int> missing{count};
  std::vector<std::thread> threads;
  for (int number = 0; number < count; ++number) {
    threads.emplace_back([&missing, &job, number] {
      --missing;
      while (missing > 0) std::this_thread::yield();
      job(number);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace veq::test
