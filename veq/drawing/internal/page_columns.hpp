/// \file
/// Columns of vertices as a page shows them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "veq/natural/network.hpp"

namespace veq::internal {

/// Numbers, NaN where nothing is set; or texts, nothing where nothing is.
struct PageColumn {
  std::string key;
  bool isNumber = true;
  std::vector<double> numbers;
  std::vector<std::optional<std::string>> texts;
};

/// A column whose values are all numbers, or not set, is one of numbers, and any other one of
/// texts, as writers write them; "Vertex Weight" stands for the weights. Nothing where there is no
/// such column.
[[nodiscard]] std::optional<PageColumn> pageColumn(const Network& network, std::string_view key);

/// The section's payload.
[[nodiscard]] std::string columnBytes(const PageColumn& column);

}  // namespace veq::internal
