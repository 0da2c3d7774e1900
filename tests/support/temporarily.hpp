#pragma once

#include <utility>

namespace veq::test {

/// As long as it lives, something that is usually of one value is of another.
template <class T>
class Temporarily {
 public:
  Temporarily(T& place, T value) : place_(place), usual_(std::exchange(place, value)) {}
  ~Temporarily() { place_ = usual_; }
  Temporarily(const Temporarily&) = delete;
  Temporarily& operator=(const Temporarily&) = delete;

 private:
  T& place_;
  T usual_;
};

}  // namespace veq::test
