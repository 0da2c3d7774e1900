/// \file
/// Standard error as a terminal, and the signals that come from one.
#pragma once

#include <cstddef>
#include <string_view>

namespace veq::tool {

/// The width of the terminal that standard error is; 0 where it is none, or one that cannot go back
/// to the beginning of a line.
[[nodiscard]] std::size_t terminalWidth();

/// Writes at once, whatever the text ends with.
void writeToTerminal(std::string_view text);

/// From now on a signal that ends the program, from the keyboard or by somebody's wish, first
/// removes the files that it has in the making.
void tidyUpOnSignals();

/// While it lives, an interrupt from the keyboard is only noted.
class InterruptWatch {
 public:
  InterruptWatch();
  ~InterruptWatch();
  InterruptWatch(const InterruptWatch&) = delete;
  InterruptWatch& operator=(const InterruptWatch&) = delete;

  [[nodiscard]] bool interrupted() const;

 private:
  void (*previous_)(int);
};

/// Ends the program as an interrupt would have done, so that a shell sees it.
[[noreturn]] void endByInterrupt();

}  // namespace veq::tool
