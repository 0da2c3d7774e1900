/// \file
/// A table in columns.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

namespace veq::tool {

/// The first column stands to the left, all others to the right. Widths count characters.
class Table {
 public:
  explicit Table(std::vector<std::string> header);

  /// One cell for each column.
  void addRow(std::vector<std::string> cells);

  friend std::ostream& operator<<(std::ostream& out, const Table& table);

 private:
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace veq::tool
