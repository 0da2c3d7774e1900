#include "veq/base/encodings.hpp"

#include "veq/base/internal/encodings.hpp"

namespace veq {

bool isUtf8(std::string_view bytes) { return internal::isValidUtf8(bytes); }

}  // namespace veq
