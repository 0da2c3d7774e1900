/// \file
/// The line that shows how far a walk has come.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

namespace veq::tool {

/// "[#########---------------] 1.2 M of 3.2 M steps, 4.1 M/s, 0:05 left", cut to the width.
[[nodiscard]] std::string progressText(std::uint64_t done, std::uint64_t total,
                                       std::chrono::duration<double> elapsed, std::size_t width);

/// Draws the line on standard error where that is a terminal, and removes it at the end of its
/// life.
class ProgressLine {
 public:
  ProgressLine();
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  [[nodiscard]] bool isVisible() const { return visible_; }
  void draw(std::uint64_t done, std::uint64_t total);
  void erase();

 private:
  const bool visible_;
  bool drawn_ = false;
  const std::chrono::steady_clock::time_point start_;
};

}  // namespace veq::tool
