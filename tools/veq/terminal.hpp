/// \file
/// Standard error as a terminal, and the signals that come from one.
#pragma once

#include <cstddef>
#include <string_view>

namespace veq::tool {

/// The width of the terminal that standard error is; 0 where it is none.
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

  /// Ends the program as the interrupt would have done.
  [[noreturn]] static void endProgram();

 private:
  void (*previous_)(int);
};

}  // namespace veq::tool
