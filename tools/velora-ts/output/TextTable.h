#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

/// Rows of cells, written as wide as the terminal allows.
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

  void Add(std::vector<Cell> row) { rows.push_back(std::move(row)); }
  void Write() const;

 private:
  std::vector<std::size_t> Widths(std::size_t available) const;

  std::vector<Column> columns;
  std::vector<std::vector<Cell>> rows;
};
