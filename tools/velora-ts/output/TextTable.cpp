#include "output/TextTable.h"

#include "output/Output.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace Velora::Ts {

namespace {

constexpr const char* gap = "  ";
constexpr std::size_t gapWidth = 2;
constexpr std::size_t narrowest = 6;
constexpr std::size_t indentBelow = 4;                        // of texts below their row
constexpr std::size_t mostKept = 1000;                        // first rows, which decide the widths
constexpr std::size_t mostBytesKept = std::size_t{1} << 20U;  // of their texts

std::string Padded(const std::string& text, std::size_t width, bool atRight) {
  const std::string blanks(width - std::min(width, WidthOf(text)), ' ');
  return atRight ? blanks + text : text + blanks;
}

}  // namespace

// On a terminal, a time does without what its title or a line above it says.
void TextTable::Shorten(Line& line) {
  std::optional<TimeParts> before;
  for (std::size_t column = 0; column < columns.size(); ++column) {
    std::string& text = line.cells[column].text;
    const std::optional<TimeParts> earlier = std::exchange(before, PartsOf(text));
    const std::optional<TimeParts>& time = before;
    if (!time || columns[column].times == Times::Complete) {
      continue;
    }
    if (columns[column].times == Times::OfDay) {
      line.above = days.Above(*time);
      text = time->ofDay;
      continue;
    }
    if (columns[column].times == Times::Later) {
      text = earlier ? LaterInShort(*earlier, *time).value_or(text) : text;
      continue;
    }
    if (offsets[column].empty()) {
      offsets[column] = time->offset;
      columns[column].title += " (" + time->offset + ')';
    }
    if (time->offset == offsets[column]) {
      text = time->date + ' ' + time->ofDay;
    }
  }
}

/// The width of a column's title and of its cells that are not wider than the limit.
std::size_t TextTable::WidthOfColumn(std::size_t column, std::size_t limit) const {
  std::size_t widest = WidthOf(columns[column].title);
  for (const Line& line : first) {
    const std::size_t width = WidthOf(line.cells[column].text);
    widest = width > limit ? widest : std::max(widest, width);
  }
  return widest;
}

std::size_t TextTable::WidthOfAll() const {
  std::size_t all = 0;
  for (const std::size_t width : widths) {
    all += width > 0 ? width + (all > 0 ? gapWidth : 0) : 0;
  }
  return all;
}

// Narrows the widest column again and again until all fit. A time that is cut could mean another one.
void TextTable::Narrow(bool any) {
  for (std::size_t total = WidthOfAll(); total > terminal.width; --total) {
    std::size_t* widest = nullptr;
    for (std::size_t column = 0; column < columns.size(); ++column) {
      const bool kept = columns[column].whole || columns[column].times != Times::Complete;
      if (!kept && (any || columns[column].yielding) && (widest == nullptr || widths[column] > *widest)) {
        widest = &widths[column];
      }
    }
    if (widest == nullptr || *widest <= narrowest) {
      return;
    }
    --*widest;
  }
}

// While the columns do not fit, long texts that are never cut, and texts below rows, get lines of their own; then
// yielding columns are narrowed, and left out from the left; then all are narrowed, and left out from the right.
void TextTable::Fit() {
  for (std::size_t column = 0; column < columns.size(); ++column) {
    widths.push_back(WidthOfColumn(column, Terminal::any));
  }
  if (WidthOfAll() > terminal.width) {
    for (std::size_t column = 0; column < columns.size(); ++column) {
      widths[column] = columns[column].whole   ? WidthOfColumn(column, terminal.width * 2 / 5)
                       : columns[column].below ? 0
                                               : widths[column];
    }
  }
  std::vector<std::size_t> wanted = widths;
  Narrow(false);
  for (std::size_t column = 0; column < columns.size() && WidthOfAll() > terminal.width; ++column) {
    wanted[column] = columns[column].yielding ? 0 : wanted[column];
    widths = wanted;
    Narrow(false);
  }
  Narrow(true);
  std::size_t left = terminal.width;
  for (std::size_t column = 0; column < columns.size(); ++column) {
    std::size_t& width = widths[column];
    width = columns[column].whole && column > 0 && width > left ? 0 : std::min(width, left);
    left -= width > 0 ? std::min(left, width + gapWidth) : 0;
  }
}

void TextTable::Add(const Row& row) {
  Line line{"", row};
  if (terminal.IsNarrow()) {
    Shorten(line);
  }
  if (!widths.empty()) {
    Write(line);
    return;
  }
  for (const Cell& cell : row) {
    bytes += cell.text.size();
  }
  first.push_back(std::move(line));
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
  Line titles;
  for (std::size_t column = 0; column < columns.size(); ++column) {
    const bool numbers =
        std::any_of(first.begin(), first.end(), [column](const Line& line) { return line.cells[column].number; });
    titles.cells.push_back({Cut(columns[column].title, widths[column]), false, numbers});
  }
  Write(titles);
  for (const Line& line : std::exchange(first, {})) {
    Write(line);
  }
}

void TextTable::Write(const Line& line) const {
  std::string text = line.above.empty() ? "" : Cut(line.above, terminal.width) + '\n';
  std::size_t begin = 0;  // of the column
  for (std::size_t column = 0; column < columns.size(); ++column) {
    const Cell& cell = line.cells[column];
    const std::size_t width = widths[column];
    if (width == 0) {
      continue;
    }
    const bool whole = columns[column].whole || !terminal.IsNarrow();
    const std::string shown =
        Padded(whole ? cell.text : Cut(cell.text, width), width, cell.number || columns[column].number);
    text += begin == 0 ? "" : gap;
    text += cell.alarming && terminal.colours ? "\x1b[1;31m" + shown + "\x1b[0m" : shown;
    begin += width + gapWidth;
    if (columns[column].whole && terminal.IsNarrow() && WidthOf(shown) > width) {
      text += '\n' + std::string(begin - gapWidth, ' ');
    }
  }
  for (std::size_t column = 0; column < columns.size(); ++column) {
    if (IsBelow(column) && !line.cells[column].text.empty()) {
      text.erase(text.find_last_not_of(' ') + 1);
      text += '\n' + Cut(std::string(indentBelow, ' ') + line.cells[column].text, terminal.width);
    }
  }
  WriteOut(text.erase(text.find_last_not_of(" \n") + 1) + '\n');
}

}  // namespace Velora::Ts
