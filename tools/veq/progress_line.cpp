#include "progress_line.hpp"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <future>
#include <iterator>

#include "terminal.hpp"
#include "text.hpp"

namespace veq::tool {
namespace {

constexpr std::size_t kWideBar = 24;
constexpr std::size_t kNarrowBar = 12;
constexpr std::chrono::milliseconds kRedraw{100};
constexpr Elapsed kSilence{1.0};

/// "0:05", "12:34", "3:00:00", and days beyond that.
std::string durationText(double seconds) {
  if (!(seconds < 100.0 * 86400)) return "over 100 days";
  const auto whole = static_cast<std::uint64_t>(std::llround(seconds));
  if (whole >= 86400) return counted(whole / 86400, "day", "days");
  const auto twoDigits = [](std::uint64_t value) {
    return std::string(value < 10 ? "0" : "") + std::to_string(value);
  };
  const std::string rest = twoDigits(whole % 60);
  if (whole < 3600) return std::to_string(whole / 60) + ":" + rest;
  return std::to_string(whole / 3600) + ":" + twoDigits(whole / 60 % 60) + ":" + rest;
}

/// "999", "12.3 k", "4.5 M": more digits would change too fast to be read.
std::string countText(double value) {
  const char* const units[] = {"", " k", " M", " G", " T", " P", " E"};
  std::size_t unit = 0;
  while (value >= 999.95 && unit + 1 < std::size(units)) {
    value /= 1000;
    ++unit;
  }
  return fixedNumber(value, unit == 0 ? 0 : 1) + units[unit];
}

std::string bar(double share, std::size_t width) {
  const auto filled =
      static_cast<std::size_t>(std::clamp(share, 0.0, 1.0) * static_cast<double>(width));
  return "[" + std::string(filled, '#') + std::string(width - filled, '-') + "] ";
}

/// The first form that leaves the last column free; a line that fills it would wrap, and could not
/// be drawn over.
std::string fitting(const std::vector<std::string>& forms, std::size_t width) {
  for (const std::string& form : forms) {
    if (characterCount(form) < width) return form;
  }
  return {};
}

std::string rateText(std::uint64_t done, Elapsed elapsed) {
  if (done == 0 || !(elapsed.count() > 0)) return {};
  return ", " + countText(static_cast<double>(done) / elapsed.count()) + "/s";
}

}  // namespace

std::string stepsText(std::uint64_t done, std::uint64_t all, Elapsed elapsed, std::size_t width) {
  const double share = all == 0 ? 1 : static_cast<double>(done) / static_cast<double>(all);
  const std::string counts = countText(static_cast<double>(done)) + " of " +
                             countText(static_cast<double>(all)) + " steps";
  const std::string rate = rateText(done, elapsed);
  const std::string left =
      rate.empty() ? "" : ", " + durationText(elapsed.count() * (1 / share - 1)) + " left";
  const std::string wide = bar(share, kWideBar);
  const std::string narrow = bar(share, kNarrowBar);
  return fitting(
      {wide + counts + rate + left, narrow + counts + rate + left, narrow + counts + left,
       counts + rate + left, counts + left, counts, percentage(share, 1)},
      width);
}

std::string reachText(double reached, double target, std::uint64_t steps, Elapsed elapsed,
                      std::size_t width) {
  const std::string shares =
      fixedNumber(100 * reached, 1) + " % of " + shortNumber(100 * target) + " % reached";
  const std::string counts = ", " + countText(static_cast<double>(steps)) + " steps";
  const std::string rate = rateText(steps, elapsed);
  const double share = target > 0 ? reached / target : 1;
  return fitting(
      {bar(share, kWideBar) + shares + counts + rate,
       bar(share, kNarrowBar) + shares + counts + rate, bar(share, kNarrowBar) + shares + counts,
       shares + counts, shares, percentage(reached, 1)},
      width);
}

std::string workText(const std::string& what, std::uint64_t done, std::uint64_t all,
                     Elapsed elapsed, std::size_t width) {
  const std::string time = durationText(elapsed.count());
  const double share = static_cast<double>(done) / static_cast<double>(all);
  const std::string part = all == 0 ? "" : ", " + fixedNumber(100 * share, 0) + " %";
  return fitting({what + part + ", " + time, what + ", " + time, time}, width);
}

void ProgressLine::draw(const std::string& text) {
  const std::size_t length = characterCount(text);
  // Blanks over what was longer; escape sequences are not for every terminal.
  const std::size_t blanks = drawn_ - std::min(drawn_, length);
  writeToTerminal("\r" + text + std::string(blanks, ' '));
  drawn_ = length;
}

void ProgressLine::erase() {
  if (drawn_ == 0) return;
  writeToTerminal("\r" + std::string(drawn_, ' ') + "\r");
  drawn_ = 0;
}

void watch(const LineText& text, const std::function<void()>& work,
           const std::function<void()>& onInterrupt) {
  const auto start = std::chrono::steady_clock::now();
  const InterruptWatch interrupts;
  bool told = false;
  auto result = std::async(std::launch::async, work);
  ProgressLine line;
  while (result.wait_for(kRedraw) != std::future_status::ready) {
    if (interrupts.interrupted() && !told) {
      line.erase();
      if (!onInterrupt) endByInterrupt();
      onInterrupt();
      told = true;
    }
    const Elapsed elapsed = std::chrono::steady_clock::now() - start;
    const std::size_t width = terminalWidth();
    if (width > 0 && elapsed >= kSilence) line.draw(text(elapsed, width));
  }
  line.erase();
  result.get();
}

void watch(const std::string& what, const std::function<void(const Progress&)>& work) {
  std::atomic<std::uint64_t> done = 0;
  std::atomic<std::uint64_t> all = 0;
  Progress progress;
  progress.observer = [&](std::uint64_t doneNow, std::uint64_t allNow) {
    done = doneNow;
    all = allNow;
  };
  watch(
      [&](Elapsed elapsed, std::size_t width) { return workText(what, done, all, elapsed, width); },
      [&] { work(progress); });
}

void watch(const std::string& what, const std::function<void()>& work) {
  watch(what, [&work](const Progress&) { work(); });
}

}  // namespace veq::tool
