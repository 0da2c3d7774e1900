#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace veq::readers {

/// Each gives all that the bytes hold, also of several pieces one behind the other. Throws Error
/// where they are damaged, end too early, or hold more than `most`.
[[nodiscard]] std::string unzipped(std::string_view bytes, std::uint64_t most);
[[nodiscard]] std::string unzstded(std::string_view bytes, std::uint64_t most);

}  // namespace veq::readers
