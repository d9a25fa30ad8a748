#include "exporting/ParameterColumns.h"
#include "exporting/UniqueName.h"
#include "exporting/Writers.h"
#include "output/Output.h"
#include "store/reading/EventRows.h"
#include "store/reading/ParameterValue.h"
#include "store/reading/Rows.h"
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
constexpr std::array fixedColumns = {"number", "at", "run", "execution", "node", "activity", "event"};

// The executions, runs and activity versions to which the events of a run belong.
constexpr const char* eventsOfRun =
    "events v LEFT JOIN executions x ON x.execution_id = v.execution_id "
    "LEFT JOIN executions r ON r.execution_id = x.root_id LEFT JOIN activity_versions a ON a.version_id = x.version_id";
// As a list, which SQLite sorts once, and not as a join, whose rows it would sort with all their values.
constexpr const char* isOfRun =
    "v.event_id IN (SELECT e.event_id FROM executions o JOIN events e ON e.execution_id = o.execution_id "
    "WHERE o.root_id = ?1)";
constexpr const char* isOfNoRun = "+v.execution_id IS NULL AND v.at >= ?1 AND v.at < ?2";

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

class Csv {
 public:
  Csv(const Store::Reader& store, const Selection& selection)
      : selection(selection),
        ofRun(store, "v.event_id, v.at, r.guid, x.guid, x.node, a.name, v.name", eventsOfRun, isOfRun),
        ofNoRun(store, "v.event_id, v.at, NULL, NULL, NULL, NULL, v.name", "events v", isOfNoRun),
        namesOfRun(store, std::string(names) + "executions x JOIN events v ON v.execution_id = x.execution_id " +
                              theirs + "x.root_id = ?1 ORDER BY x.execution_id, v.event_id, p.position"),
        namesOfNoRun(
            store, std::string(names) + "events v " + theirs + isOfNoRun + " ORDER BY v.at, v.event_id, p.position") {}

  void FindColumns() {
    for (const char* name : fixedColumns) {
      header += header.empty() ? utf8Mark : ",";
      header += name;
      taken.insert(name);
    }
    for (const Run& run : selection.runs) {
      Learn(namesOfRun.Ask(run.root));
    }
    if (selection.ofNoRun) {
      Learn(namesOfNoRun.Ask(selection.ofNoRun->first, selection.ofNoRun->second));
    }
  }

  void Write(const Step& step) {
    WriteData(header);
    WriteData(lineEnd);
    for (const Run& run : selection.runs) {
      WriteEvents(ofRun.Ask(run.root), step);
    }
    if (selection.ofNoRun) {
      WriteEvents(ofNoRun.Ask(selection.ofNoRun->first, selection.ofNoRun->second), step);
    }
  }

 private:
  // The names come in an order in which the store has them, and are put into that of the table afterwards.
  static constexpr const char* names = "SELECT p.position, p.name, p.event_id FROM ";
  static constexpr const char* theirs = "JOIN parameters p ON p.event_id = v.event_id WHERE ";

  void Learn(Rows& parameters) {
    std::optional<long long> current;
    while (parameters.Next()) {
      const long long event = parameters.Integer(2);
      if (event != current) {
        columns.BeginEvent();
        current = event;
      }
      columns.Learn(parameters.Text(1), {event, parameters.Integer(0)});
    }
    columns.Arrange([this](const std::string& name, int occurrence) {
      ExpectRoomForColumns();
      header += ',';
      AppendTextCell(header, UniqueName(taken, Readable(name), occurrence));
    });
  }

  void ExpectRoomForColumns() const {
    if (fixedColumns.size() + columns.Count() > mostColumns) {
      throw Error("the parameters have more names than a table may have columns, which is " +
                  std::to_string(mostColumns) +
                  "; export fewer runs at once, or export without --format, which has no columns");
    }
  }

  void WriteEvents(EventRows& events, const Step& step) {
    std::vector<std::string> cells(columns.Count());
    while (events.Next()) {
      columns.BeginEvent();
      for (std::string& cell : cells) {
        cell.clear();
      }
      while (events.NextParameter()) {
        AppendValue(cells.at(columns.Of(events.Parameter().Text(1))), events.Parameter());
      }
      WriteLine(events.Event(), cells);
      step();
    }
  }

  void AppendValue(std::string& cell, const Rows& parameter) {
    readable.clear();
    if (AppendValueInWords(readable, parameter)) {
      AppendTextCell(cell, readable);
    } else {
      cell += readable;
    }
  }

  void WriteLine(const Rows& event, const std::vector<std::string>& cells) {
    line.clear();
    AppendInteger(line, event.Integer(0));
    for (std::size_t column = 1; column < fixedColumns.size(); ++column) {
      line += ',';
      if (const int place = static_cast<int>(column); !event.IsNull(place)) {
        readable.clear();
        AppendReadable(readable, event.Text(place));
        AppendTextCell(line, readable);
      }
    }
    for (const std::string& cell : cells) {
      line += ',';
      line += cell;
    }
    line += lineEnd;
    WriteData(line);
  }

  const Selection& selection;
  EventRows ofRun, ofNoRun;
  Rows namesOfRun, namesOfNoRun;
  std::string header;
  std::set<std::string> taken;
  ParameterColumns columns;
  std::string line, readable;  // kept for their memory
};

}  // namespace

void WriteCsv(const Store::Reader& store, const Selection& selection, const Step& step) {
  Csv csv(store, selection);
  csv.FindColumns();
  csv.Write(step);
}

}  // namespace Velora::Ts
