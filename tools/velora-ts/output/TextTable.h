#pragma once

#include "output/Terminal.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace Velora::Ts {

/// Rows of cells, written as wide as the terminal allows. Columns are as wide as the first rows take; what comes after
/// these is written at once, so that a table of any length takes no more memory.
class TextTable {
 public:
  struct Column {
    std::string title;
    bool number = false;    ///< Aligned at the right.
    bool yielding = false;  ///< Cut before any other, where room is short.
  };
  struct Cell {
    std::string text;  ///< Printable.
    bool alarming = false;
  };

  explicit TextTable(std::vector<Column> columns) : columns(std::move(columns)) {}

  void Add(const std::vector<Cell>& row);
  /// Writes what has not been written yet.
  void Finish();

 private:
  void Fit();
  void Begin();
  void Write(const std::vector<Cell>& row) const;

  const Terminal terminal;
  const std::vector<Column> columns;
  std::vector<std::vector<Cell>> first;  // rows, as long as they are kept
  std::size_t bytes = 0;                 // of these
  std::vector<std::size_t> widths;       // once they are written
};

}  // namespace Velora::Ts
