#include "progress_line.hpp"

#include <algorithm>
#include <cmath>

#include "terminal.hpp"
#include "text.hpp"

namespace veq::tool {
namespace {

constexpr std::size_t kBarWidth = 24;

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

}  // namespace

std::string progressText(std::uint64_t done, std::uint64_t total,
                         std::chrono::duration<double> elapsed, std::size_t width) {
  const double share = total == 0 ? 1 : static_cast<double>(done) / static_cast<double>(total);
  const auto filled = std::min(kBarWidth, static_cast<std::size_t>(share * kBarWidth));
  std::string text = std::string("[") + std::string(filled, '#') +
                     std::string(kBarWidth - filled, '-') + "] " +
                     countText(static_cast<double>(done)) + " of " +
                     countText(static_cast<double>(total)) + " steps";
  if (done > 0 && elapsed.count() > 0) {
    const double rate = static_cast<double>(done) / elapsed.count();
    text += ", " + countText(rate) + "/s, " +
            durationText(static_cast<double>(total - done) / rate) + " left";
  }
  // A line that fills the last column would wrap, and could not be drawn over.
  if (text.size() >= width) text.resize(width - std::min<std::size_t>(width, 1));
  return text;
}

ProgressLine::ProgressLine()
    : visible_(terminalWidth() > 0), start_(std::chrono::steady_clock::now()) {}

ProgressLine::~ProgressLine() { erase(); }

void ProgressLine::draw(std::uint64_t done, std::uint64_t total) {
  if (!visible_) return;
  const auto elapsed = std::chrono::steady_clock::now() - start_;
  writeToTerminal("\r\x1b[K" + progressText(done, total, elapsed, terminalWidth()));
  drawn_ = true;
}

void ProgressLine::erase() {
  if (drawn_) writeToTerminal("\r\x1b[K");
  drawn_ = false;
}

}  // namespace veq::tool
