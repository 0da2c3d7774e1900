#include "terminal.hpp"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include <veq/base/files.hpp>

#if __has_include(<sys/ioctl.h>) && __has_include(<unistd.h>)
#include <sys/ioctl.h>
#include <unistd.h>
#define VEQ_HAS_TERMINAL 1
#endif

namespace veq::tool {
namespace {

volatile std::sig_atomic_t interruptNoted = 0;

void noteInterrupt(int) { interruptNoted = 1; }

void tidyUpAndEnd(int signal) {
  removeTemporaryFiles();
  static_cast<void>(std::signal(signal, SIG_DFL));
  static_cast<void>(std::raise(signal));
}

#ifdef SIGHUP
constexpr int kEndingSignals[] = {SIGINT, SIGTERM, SIGHUP};
#else
constexpr int kEndingSignals[] = {SIGINT, SIGTERM};
#endif

}  // namespace

std::size_t terminalWidth() {
#ifdef VEQ_HAS_TERMINAL
  const char* const kind = std::getenv("TERM");
  if (!kind || *kind == '\0' || std::string_view(kind) == "dumb") return 0;
  if (isatty(STDERR_FILENO) == 0) return 0;
  winsize size{};
  if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
  return 80;
#else
  return 0;
#endif
}

void writeToTerminal(std::string_view text) {
  // Whoever closes the terminal can be told nothing.
  static_cast<void>(std::fwrite(text.data(), 1, text.size(), stderr));
  static_cast<void>(std::fflush(stderr));
}

void tidyUpOnSignals() {
  for (const int signal : kEndingSignals) {
    // A program that was started with a signal ignored, as nohup does, goes on ignoring it.
    if (std::signal(signal, tidyUpAndEnd) == SIG_IGN) {
      static_cast<void>(std::signal(signal, SIG_IGN));
    }
  }
}

InterruptWatch::InterruptWatch() {
  interruptNoted = 0;
  previous_ = std::signal(SIGINT, noteInterrupt);
  // A program that was started with interrupts ignored goes on ignoring them.
  if (previous_ == SIG_IGN) static_cast<void>(std::signal(SIGINT, SIG_IGN));
}

InterruptWatch::~InterruptWatch() { static_cast<void>(std::signal(SIGINT, previous_)); }

bool InterruptWatch::interrupted() const { return interruptNoted != 0; }

void endByInterrupt() {
  removeTemporaryFiles();
  static_cast<void>(std::signal(SIGINT, SIG_DFL));
  static_cast<void>(std::raise(SIGINT));
  std::_Exit(130);
}

}  // namespace veq::tool
