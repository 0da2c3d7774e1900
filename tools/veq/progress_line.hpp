/// \file
/// The line that shows how far work has come that takes long.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <veq/veq.hpp>

namespace veq::tool {

using Elapsed = std::chrono::duration<double>;

/// \name Texts for the line
/// As much as fits into less than the width, whole; the bar goes first.
/// @{
/// "[#########---------------] 1.2 M of 3.2 M steps, 4.1 M/s, 0:05 left".
[[nodiscard]] std::string stepsText(std::uint64_t done, std::uint64_t all, Elapsed elapsed,
                                    std::size_t width);
/// "[#########---------------] 37.5 % of 99 % reached, 1.2 M steps, 4.1 M/s": nobody knows how long
/// the last vertices take.
[[nodiscard]] std::string reachText(double reached, double target, std::uint64_t steps,
                                    Elapsed elapsed, std::size_t width);
/// "reading web.net, 37 %, 0:03"; without a share while nobody knows how much there is.
[[nodiscard]] std::string workText(const std::string& what, std::uint64_t done, std::uint64_t all,
                                   Elapsed elapsed, std::size_t width);
/// @}

/// Draws a line on standard error where that is a terminal, over and over, in plain text, and
/// removes it at the end of its life.
class ProgressLine {
 public:
  ProgressLine() = default;
  ~ProgressLine() { erase(); }
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  void draw(const std::string& text);
  void erase();

 private:
  std::size_t drawn_ = 0;  // characters
};

/// What the line shows after some time in some width.
using LineText = std::function<std::string(Elapsed, std::size_t)>;

/// Does the work on another thread and draws the line meanwhile, from the first second on. What the
/// work throws passes through. An interrupt calls what is given for it, once, and goes on waiting;
/// without such a thing it ends the program, the line being erased.
void watch(const LineText& text, const std::function<void()>& work,
           const std::function<void()>& onInterrupt = {});

/// The same for work that tells how far it is.
void watch(const std::string& what, const std::function<void(const Progress&)>& work);

/// The same for work that tells nothing but its name.
void watch(const std::string& what, const std::function<void()>& work);

}  // namespace veq::tool
