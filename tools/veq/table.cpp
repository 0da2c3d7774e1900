#include "table.hpp"

#include <algorithm>
#include <ostream>
#include <utility>

#include "text.hpp"

namespace veq::tool {

Table::Table(std::vector<std::string> header) { rows_.push_back(std::move(header)); }

void Table::addRow(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }

std::ostream& operator<<(std::ostream& out, const Table& table) {
  std::vector<std::size_t> widths(table.rows_.front().size());
  for (const auto& row : table.rows_) {
    for (std::size_t i = 0; i < widths.size(); ++i) {
      widths[i] = std::max(widths[i], characterCount(row[i]));
    }
  }
  for (const auto& row : table.rows_) {
    out << row[0] << std::string(widths[0] - characterCount(row[0]), ' ');
    for (std::size_t i = 1; i < widths.size(); ++i) {
      out << std::string(2 + widths[i] - characterCount(row[i]), ' ') << row[i];
    }
    out << '\n';
  }
  return out;
}

}  // namespace veq::tool
