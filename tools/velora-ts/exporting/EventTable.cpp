#include "exporting/EventTable.h"

#include "exporting/UniqueName.h"
#include "output/Output.h"
#include "store/reading/ParameterValue.h"
#include "store/values/Json.h"
#include "store/values/RecordedText.h"

#include "store/Error.h"

#include <algorithm>
#include <array>

namespace Velora::Ts {

using namespace Store;

// RFC 4180 with a byte order mark, so that spreadsheet programs recognize UTF-8: docs/velora-ts.md.

namespace {

constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view lineEnd = "\r\n";
constexpr std::size_t mostColumns = 16384;  // the most that spreadsheet programs accept

constexpr std::array<bool, 256> needsQuotes = [] {
  std::array<bool, 256> needs{};
  for (const char character : {',', ';', '"', '\t', '\r', '\n'}) {
    needs[static_cast<unsigned char>(character)] = true;
  }
  return needs;
}();

bool IsPlain(std::string_view text) {
  return !text.empty() && text.front() != ' ' && text.back() != ' ' &&
         std::none_of(text.begin(), text.end(),
                      [](char character) { return needsQuotes[static_cast<unsigned char>(character)]; });
}

// A text that a spreadsheet program would take for a formula gets an apostrophe before it. So does a text that begins
// with an apostrophe, so that readers can remove it again.
void AppendTextCell(std::string& line, std::string_view text) {
  const bool plain = IsPlain(text);
  line += plain ? "" : "\"";
  if (!text.empty() && std::string_view("=+-@\t\r\n'").find(text.front()) != std::string_view::npos &&
      !NumberIn(text)) {
    line += '\'';
  }
  if (plain) {
    line += text;
    return;
  }
  for (const char character : text) {
    line += character;
    if (character == '"') {
      line += '"';
    }
  }
  line += '"';
}

}  // namespace

EventTable::EventTable(const std::vector<std::string>& fixed) : fixed(fixed.size()) {
  for (const std::string& name : fixed) {
    header += header.empty() ? utf8Mark : ",";
    header += name;
    taken.insert(name);
  }
}

void EventTable::Arrange() {
  columns.Arrange([this](const std::string& name, int occurrence) {
    if (fixed + columns.Count() > mostColumns) {
      throw Error("the parameters have more names than a table may have columns, which is " +
                  std::to_string(mostColumns) +
                  "; export fewer runs at once, or export without --format, which has no columns");
    }
    header += ',';
    AppendTextCell(header, UniqueName(taken, Readable(name), occurrence));
  });
}

void EventTable::WriteHead() const {
  WriteData(header);
  WriteData(lineEnd);
}

void EventTable::Write(Store::EventRows& events, const std::vector<std::string>& more) {
  columns.BeginEvent();
  cells.resize(columns.Count());
  for (std::string& cell : cells) {
    cell.clear();
  }
  while (events.NextParameter()) {
    AppendValue(cells.at(columns.Of(events.Parameter().Text(1))), events.Parameter());
  }
  line.clear();
  AppendInteger(line, events.Event().Integer(0));
  for (std::size_t column = 1; column < fixed - more.size(); ++column) {
    line += ',';
    if (const int place = static_cast<int>(column); !events.Event().IsNull(place)) {
      readable.clear();
      AppendReadable(readable, events.Event().Text(place));
      AppendTextCell(line, readable);
    }
  }
  for (const std::string& text : more) {
    line += ',';
    AppendTextCell(line, text);
  }
  for (const std::string& cell : cells) {
    line += ',';
    line += cell;
  }
  line += lineEnd;
  WriteData(line);
}

void EventTable::AppendValue(std::string& cell, const Store::Rows& parameter) {
  readable.clear();
  if (AppendValueInWords(readable, parameter)) {
    AppendTextCell(cell, readable);
  } else {
    cell += readable;
  }
}

}  // namespace Velora::Ts
