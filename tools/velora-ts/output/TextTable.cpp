#include "output/TextTable.h"

#include "output/Output.h"

#include <algorithm>
#include <numeric>

namespace Velora::Ts {

namespace {

constexpr const char* gap = "  ";
constexpr std::size_t gapWidth = 2;
constexpr std::size_t narrowest = 4;
constexpr std::size_t mostKept = 1000;                        // first rows, which decide the widths
constexpr std::size_t mostBytesKept = std::size_t{1} << 20U;  // of their texts

std::string Padded(const std::string& text, std::size_t width, bool atRight, bool last) {
  const std::string blanks(width - std::min(width, WidthOf(text)), ' ');
  return atRight ? blanks + text : last ? text : text + blanks;
}

}  // namespace

// While the columns do not fit, narrows the widest yielding one, then the widest of all. Columns for which there is
// still no room are left out at the right.
void TextTable::Fit() {
  for (std::size_t column = 0; column < columns.size(); ++column) {
    std::size_t width = WidthOf(columns[column].title);
    for (const std::vector<Cell>& row : first) {
      width = std::max(width, WidthOf(row[column].text));
    }
    widths.push_back(width);
  }
  std::size_t total = std::accumulate(widths.begin(), widths.end(), gapWidth * (columns.size() - 1));
  for (const bool any : {false, true}) {
    while (total > terminal.width) {
      std::size_t* widest = nullptr;
      for (std::size_t column = 0; column < columns.size(); ++column) {
        if ((any || columns[column].yielding) && (widest == nullptr || widths[column] > *widest)) {
          widest = &widths[column];
        }
      }
      if (widest == nullptr || *widest <= narrowest) {
        break;
      }
      --*widest;
      --total;
    }
  }
  std::size_t left = terminal.width;
  for (std::size_t& width : widths) {
    width = std::min(width, left);
    left -= std::min(left, width + gapWidth);
  }
}

void TextTable::Add(const std::vector<Cell>& row) {
  if (!widths.empty()) {
    Write(row);
    return;
  }
  for (const Cell& cell : row) {
    bytes += cell.text.size();
  }
  first.push_back(row);
  if (first.size() == mostKept || bytes > mostBytesKept) {
    Begin();
  }
}

void TextTable::Finish() {
  if (widths.empty()) {
    Begin();
  }
}

void TextTable::Begin() {
  Fit();
  std::vector<Cell> titles;
  for (const Column& column : columns) {
    titles.push_back({column.title});
  }
  Write(titles);
  for (const std::vector<Cell>& row : std::exchange(first, {})) {
    Write(row);
  }
}

void TextTable::Write(const std::vector<Cell>& row) const {
  std::string line;
  for (std::size_t column = 0; column < columns.size() && (column == 0 || widths[column] > 0); ++column) {
    const bool last = column + 1 == columns.size();
    const Cell& cell = row[column];
    const std::string shown = terminal.IsNarrow() ? Cut(cell.text, widths[column]) : cell.text;
    const std::string text = Padded(shown, widths[column], columns[column].number, last);
    line += column == 0 ? "" : gap;
    line += cell.alarming && terminal.colours ? "\x1b[1;31m" + text + "\x1b[0m" : text;
  }
  WriteOut(line.erase(line.find_last_not_of(' ') + 1) + '\n');
}

}  // namespace Velora::Ts
