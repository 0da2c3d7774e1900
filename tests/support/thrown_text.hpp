#pragma once

#include <stdexcept>
#include <string>

namespace veq::test {

/// The text of the exception of this very kind that the call throws, for comparison with literal
/// text; a text that says so where it throws nothing or something else.
template <class Exception, class F>
std::string thrownText(F f) {
  try {
    f();
  } catch (const Exception& exception) {
    return exception.what();
  } catch (...) {
    return "(another exception)";
  }
  return "(nothing was thrown)";
}

template <class F>
std::string invalidArgumentText(F f) {
  return thrownText<std::invalid_argument>(f);
}

template <class F>
bool throwsOutOfRange(F f) {
  try {
    f();
  } catch (const std::out_of_range&) {
    return true;
  }
  return false;
}

}  // namespace veq::test
