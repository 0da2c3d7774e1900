#include "veq/numeric/vectors.hpp"

#include "veq/base/internal/number_text.hpp"

namespace veq {

std::string VEQVector2d::stringValueWithSeparator(std::string_view separator) const {
  std::string result;
  internal::appendShortest(result, x_);
  internal::appendShortest(result.append(separator), y_);
  return result;
}

std::string VEQVector3d::stringValueWithSeparator(std::string_view separator) const {
  std::string result;
  internal::appendShortest(result, x_);
  internal::appendShortest(result.append(separator), y_);
  internal::appendShortest(result.append(separator), z_);
  return result;
}

}  // namespace veq
