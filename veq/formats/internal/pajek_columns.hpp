#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "veq/formats/internal/read_context.hpp"
#include "veq/formats/internal/text_columns.hpp"
#include "veq/network/internal/network_draft.hpp"

namespace veq::internal {

/// The partitions and vectors of a Pajek file, a value a line, on their way to columns of vertices.
class PajekColumns {
 public:
  /// The column goes by the word of its section where it has no name.
  void begin(std::string_view word, std::string_view name, Place place);
  void addCell(std::string_view cell) { current_->cells.set(current_->rows++, cell); }
  /// Ends a column that has values; answers whether there was one.
  bool end();
  /// Gives the draft the columns that go with its vertices, and notes what became of each.
  void finish(NetworkDraft& draft, ReadContext& context);

 private:
  struct Column {
    TextColumn cells;
    std::uint64_t rows;
    Place place;
  };

  std::optional<Column> current_;
  std::vector<Column> columns_;
};

}  // namespace veq::internal
