/// \file
/// What every program of the comparison shares: its arguments, its measurements and the row that it
/// prints. A program is called as `PROGRAM TASK key=value ... [reps=N]` and prints one line
///     task,key=value;...;extra=value,median seconds,least,most,peak KB,checksum
/// Exit status 3 says that it does not offer the task.
#pragma once

#include <malloc.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace bench {

class Arguments {
 public:
  Arguments(int count, char** values) : task_(count > 1 ? values[1] : "") {
    for (int i = 2; i < count; ++i) {
      const std::string argument = values[i];
      const std::size_t equals = argument.find('=');
      if (equals == std::string::npos) continue;
      const std::string key = argument.substr(0, equals);
      const std::string value = argument.substr(equals + 1);
      values_[key] = value;
      if (key == "reps") continue;
      // Files by their last name, so that rows do not depend on the directory.
      echo_ += (echo_.empty() ? "" : ";") + key + "=" + value.substr(value.rfind('/') + 1);
    }
  }

  [[nodiscard]] const std::string& task() const { return task_; }
  [[nodiscard]] const std::string& echo() const { return echo_; }
  [[nodiscard]] bool has(const char* key) const { return values_.count(key) != 0; }
  [[nodiscard]] std::string text(const char* key, const char* otherwise = "") const {
    const auto found = values_.find(key);
    return found == values_.end() ? otherwise : found->second;
  }
  [[nodiscard]] double real(const char* key, double otherwise) const {
    return has(key) ? std::strtod(text(key).c_str(), nullptr) : otherwise;
  }
  /// Also in the form 1e6.
  [[nodiscard]] std::uint64_t count(const char* key, std::uint64_t otherwise = 0) const {
    return has(key) ? static_cast<std::uint64_t>(real(key, 0)) : otherwise;
  }

 private:
  std::string task_;
  std::string echo_;
  std::map<std::string, std::string> values_;
};

/// A line of the kernel's account of this process, in KB.
inline std::uint64_t processKilobytes(std::string_view key) {
  std::ifstream status("/proc/self/status");
  std::string word;
  std::uint64_t kilobytes = 0;
  while (status >> word) {
    if (word == key) status >> kilobytes;
  }
  return kilobytes;
}
inline std::uint64_t residentKilobytes() { return processKilobytes("VmRSS:"); }
inline std::uint64_t peakKilobytes() { return processKilobytes("VmHWM:"); }

/// The processor time of this process, where it has one thread: other work on the machine counts
/// only for what it does to the caches. With threads=, also 1, the time by the clock on the wall.
inline double secondsBy(clockid_t clock) {
  std::timespec time;
  clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}
inline double processorSeconds() { return secondsBy(CLOCK_PROCESS_CPUTIME_ID); }

/// Merges freed small blocks now. The C library puts that off until the next large request, which
/// would pay for the deletion of the result before. (Any setting does; this one is the default.)
inline void settleHeap() { mallopt(M_MXFAST, 64 * sizeof(std::size_t) / 4); }

/// What is timed, under a name by which its instructions can be counted.
template <class Work>
[[gnu::noinline]] auto measuredWork(Work& work) {
  return work();
}

class Measurement {
 public:
  explicit Measurement(const Arguments& arguments) : arguments_(arguments) {}

  /// Times `work`, once for warming up and then `reps` times (5 unless the arguments say otherwise;
  /// one alone is not warmed up). `check` looks at the result, untimed, and gives the checksum;
  /// then the result is deleted.
  template <class Work, class Check>
  void time(Work work, Check check) {
    const auto repetitions = static_cast<int>(arguments_.count("reps", 5));
    const clockid_t clock =
        arguments_.count("threads") != 0 ? CLOCK_MONOTONIC : CLOCK_PROCESS_CPUTIME_ID;
    for (int i = repetitions == 1 ? 0 : -1; i < repetitions; ++i) {
      // A file is written anew: to give back the memory of the one before is the system's work.
      std::remove(arguments_.text("out", "").c_str());
      {
        const double begin = secondsBy(clock);
        auto result = measuredWork(work);
        const double end = secondsBy(clock);
        if (i >= 0) seconds_.push_back(end - begin);
        checksum_ = static_cast<std::uint64_t>(check(result));
      }
      settleHeap();
    }
    std::sort(seconds_.begin(), seconds_.end());
  }

  /// The same, and what the first result adds to the resident memory, for each of `count` things.
  template <class Work, class Check>
  void timeAndWeigh(const char* name, std::uint64_t count, Work work, Check check) {
    malloc_trim(0);
    const std::uint64_t before = residentKilobytes();
    bool weighed = false;
    time(std::move(work), [&](auto& result) {
      if (!std::exchange(weighed, true)) {
        malloc_trim(0);
        const auto grown = static_cast<double>(residentKilobytes()) - static_cast<double>(before);
        add(name, grown * 1024 / static_cast<double>(count));
      }
      return check(result);
    });
  }

  [[nodiscard]] double median() const { return seconds_[seconds_.size() / 2]; }

  /// One more figure of the row.
  void add(const char* name, double value) {
    char text[64];
    std::snprintf(text, sizeof text, ";%s=%.4g", name, value);
    extras_ += text;
  }
  void addNanoseconds(const char* name, double count) { add(name, median() / count * 1e9); }
  void addMegabytesPerSecond(double bytes) { add("MB_per_s", bytes / median() * 1e-6); }

  void print() const {
    std::printf("%s,%s,%.9f,%.9f,%.9f,%llu,%llu\n", arguments_.task().c_str(),
                (arguments_.echo() + extras_).c_str(), median(), seconds_.front(), seconds_.back(),
                static_cast<unsigned long long>(peakKilobytes()),
                static_cast<unsigned long long>(checksum_));
  }

 private:
  const Arguments& arguments_;
  std::vector<double> seconds_;
  std::uint64_t checksum_ = 0;
  std::string extras_;
};

struct Task {
  const char* name;
  /// Gives false for a variant that the program does not offer.
  bool (*measure)(const Arguments&, Measurement&);
};

/// Runs the task that the arguments name; the status is that of the program.
inline int run(int count, char** values, const std::vector<Task>& tasks) {
  const Arguments arguments(count, values);
  for (const Task& task : tasks) {
    if (arguments.task() != task.name) continue;
    Measurement measurement(arguments);
    if (!task.measure(arguments, measurement)) return 3;
    measurement.print();
    return 0;
  }
  return 3;
}

/// Whatever a piece of work without a result returns.
struct Done {};

inline double bytesOfFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  return static_cast<double>(file.tellg());
}

}  // namespace bench
