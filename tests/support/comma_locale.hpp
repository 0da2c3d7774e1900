#pragma once

#include <clocale>
#include <cstdlib>
#include <fstream>
#include <locale>
#include <stdexcept>
#include <string>

#include "tests/support/temporary_folder.hpp"

// Of the leak sanitizer, where there is one.
extern "C" {
[[gnu::weak]] void __lsan_disable();
[[gnu::weak]] void __lsan_enable();
}

namespace veq::test {

/// While this lives the whole process, C and C++, writes a comma for the decimal point and dots
/// between thousands. The locale is made here, of ASCII alone, since a machine need not have any.
class CommaLocale {
 public:
  CommaLocale() {
    std::ofstream characters(folder_.path("characters"));
    characters << "<code_set_name> ANSI_X3.4-1968\n<comment_char> %\n<escape_char> /\nCHARMAP\n";
    for (unsigned code = 0; code < 128; ++code) {
      constexpr const char* kDigits = "0123456789ABCDEF";
      const std::string hex = {kDigits[code >> 4], kDigits[code & 15]};
      characters << "<U00" << hex << "> /x" << hex << " c\n";
    }
    characters << "END CHARMAP\n" << std::flush;
    const std::string numbers = folder_.write("numbers",
                                              "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep "
                                              "\".\"\ngrouping 3;3\nEND LC_NUMERIC\n");
    // It ends with a warning for each category that is left to be as in C.
    const int status = std::system(("localedef --no-archive --force -i '" + numbers + "' -f '" +
                                    folder_.path("characters") + "' '" + folder_.path("comma") +
                                    "' >'" + folder_.path("output") + "' 2>&1")
                                       .c_str());
    static_cast<void>(status);
    ::setenv("LOCPATH", folder_.path("").c_str(), 1);
    // The C library never frees its list of the folders in LOCPATH.
    if (__lsan_disable) __lsan_disable();
    try {
      before_ = std::locale::global(std::locale("comma"));
      made_ = true;
    } catch (const std::runtime_error&) {
    }
    if (__lsan_enable) __lsan_enable();
  }
  ~CommaLocale() {
    if (made_) std::locale::global(before_);
    ::unsetenv("LOCPATH");
  }
  CommaLocale(const CommaLocale&) = delete;
  CommaLocale& operator=(const CommaLocale&) = delete;

  /// Whether the system could make and take it.
  explicit operator bool() const { return made_; }

 private:
  const TemporaryFolder folder_;
  std::locale before_;
  bool made_ = false;
};

}  // namespace veq::test
