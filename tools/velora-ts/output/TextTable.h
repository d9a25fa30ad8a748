#pragma once

#include "output/Terminal.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace Velora::Ts {

/// Writes a table that fits the width of the terminal. The first rows decide how wide the columns are; every later row
/// is written at once, so that the memory does not grow with the table.
class TextTable {
 public:
  struct Column {
    std::string title;
    bool number = false;    ///< Aligned at the right.
    bool yielding = false;  ///< Cut before other columns if the line is too narrow.
  };
  struct Cell {
    std::string text;       ///< Printable.
    bool alarming = false;  ///< Shown in red.
  };

  explicit TextTable(std::vector<Column> columns) : columns(std::move(columns)) {}

  /// Adds a row, with one cell for each column.
  void Add(const std::vector<Cell>& row);
  /// Writes the rows that are not written yet.
  void Finish();

 private:
  void Fit();
  void Begin();
  void Write(const std::vector<Cell>& row) const;

  const Terminal terminal;
  const std::vector<Column> columns;
  std::vector<std::vector<Cell>> first;  // the first rows, until the widths are known
  std::size_t bytes = 0;                 // the size of their texts
  std::vector<std::size_t> widths;       // of the columns; empty until the first rows are written
};

}  // namespace Velora::Ts
