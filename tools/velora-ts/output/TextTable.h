#pragma once

#include "output/Terminal.h"
#include "output/Times.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace Velora::Ts {

/// Writes a table that fits the width of the terminal. The first rows decide how wide the columns are; every later row
/// is written at once, so that the memory does not grow with the table.
class TextTable {
 public:
  /// What a terminal shows of times, whose cells have what LocalTime() says. Only complete times can be cut.
  enum class Times {
    Complete,
    Dated,  ///< Date and time of day. The offset stands in the title, and in rows that have another one.
    Later,  ///< The time of day, and how many days after the time in the column before; complete if offsets differ.
    OfDay   ///< The time of day. Date and offset stand on a line of their own wherever they change.
  };
  struct Column {
    std::string title;
    bool number = false;    ///< Aligned at the right.
    bool yielding = false;  ///< Cut before other columns if the line is too narrow.
    bool whole = false;     ///< Never cut. What takes more than two fifths of a line stands on a line of its own.
    Times times = Times::Complete;
    bool below = false;  ///< If there is no room for the column, its texts stand below their rows.
  };
  struct Cell {
    std::string text;       ///< Printable.
    bool alarming = false;  ///< Shown in red.
    bool number = false;    ///< Aligned at the right, and so is the title above it.
  };
  using Row = std::vector<Cell>;

  explicit TextTable(std::vector<Column> columns) : columns(std::move(columns)), offsets(this->columns.size()) {}

  /// Adds a row, with one cell for each column.
  void Add(const Row& row);
  /// Writes the rows that are not written yet.
  void Finish();

 private:
  /// A row, and what stands on a line of its own above it.
  struct Line {
    std::string above;
    Row cells;
  };

  void Shorten(Line& line);
  std::size_t WidthOfColumn(std::size_t column, std::size_t limit) const;
  std::size_t WidthOfAll() const;
  void Fit();
  void Narrow(bool any);
  bool IsBelow(std::size_t column) const {
    return widths[column] == 0 && (columns[column].below || columns[column].whole);
  }
  void Begin();
  void Write(const Line& line) const;

  const Terminal terminal;
  std::vector<Column> columns;
  std::vector<std::string> offsets;  // of the times in columns that show none
  DayLines days;
  std::vector<Line> first;          // the first rows, until the widths are known
  std::size_t bytes = 0;            // the size of their texts
  std::vector<std::size_t> widths;  // of the columns; empty until the first rows are written
};

}  // namespace Velora::Ts
