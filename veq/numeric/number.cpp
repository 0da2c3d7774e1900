#include "veq/numeric/number.hpp"

#include "veq/numeric/internal/element_storage.hpp"

namespace veq {

ElementType Number::type() const {
  static_assert(std::variant_size_v<Value> == 4,
                "the alternatives stand in the order of the codes");
  return static_cast<ElementType>(static_cast<int>(ElementType::kDouble) +
                                  static_cast<int>(value_.index()));
}

std::string Number::text() const {
  std::string result;
  std::visit([&result](auto value) { internal::appendNumber(result, value); }, value_);
  return result;
}

}  // namespace veq
