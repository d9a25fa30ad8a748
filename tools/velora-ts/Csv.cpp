#include "Output.h"
#include "Rows.h"
#include "Selection.h"
#include "StoredText.h"
#include "Values.h"

#include <array>
#include <charconv>
#include <map>

// RFC 4180, with a mark in front by which spreadsheet programs know UTF-8: docs/velora-ts.md.

namespace {

constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view lineEnd = "\r\n";
constexpr std::array fixedColumns = {"number", "at", "run", "execution", "node", "activity", "event"};

constexpr const char* ofRun =
    "SELECT v.event_id, v.at, r.guid, x.guid, x.node, a.name, v.name FROM executions x "
    "JOIN events v ON v.execution_id = x.execution_id JOIN executions r ON r.execution_id = x.root_id "
    "LEFT JOIN activity_versions a ON a.version_id = x.version_id WHERE x.root_id = ?1 ORDER BY v.event_id";
constexpr const char* ofNoRun =
    "SELECT event_id, at, NULL, NULL, NULL, NULL, name FROM events "
    "WHERE +execution_id IS NULL AND at >= ?1 AND at < ?2 ORDER BY event_id";

bool IsNumber(std::string_view text) {
  if (text.starts_with('+') && !text.substr(1).starts_with('-')) {
    text.remove_prefix(1);
  }
  double number = 0;
  return text.find_first_not_of("0123456789+-.eE") == std::string_view::npos &&
         std::from_chars(text.data(), text.data() + text.size(), number).ptr == text.data() + text.size() &&
         !text.empty();
}

// What a spreadsheet program would take for a formula has an apostrophe before it, and so that this one can be taken
// off again, what begins with one.
std::string TextCell(std::string_view text) {
  using Quor::TolvaServices::Local::SequenceLength;
  std::string cell = "\"";
  if (!text.empty() && std::string_view("=+-@\t\r\n'").find(text.front()) != std::string_view::npos &&
      !IsNumber(text)) {
    cell += '\'';
  }
  bool plain = !text.empty() && text.front() != ' ' && text.back() != ' ';
  while (!text.empty()) {
    const std::size_t length = text.front() == '\0' ? 0 : SequenceLength(text);
    plain = plain && std::string_view(",\"\r\n").find(text.front()) == std::string_view::npos;
    cell += text.front() == '"' ? "\"" : "";
    cell += length > 0 ? text.substr(0, length) : "\xEF\xBF\xBD";
    text.remove_prefix(length > 0 ? length : 1);
  }
  return plain ? cell.substr(1) : cell + '"';
}

class Csv {
 public:
  Csv(const Store& store, const Selection& selection)
      : selection(selection), runs(store, ofRun), rest(store, ofNoRun), parameters(store, parametersOfEvent) {}

  void FindColumns() {
    for (const char* name : fixedColumns) {
      header += header.empty() ? utf8Mark : ",";
      header += name;
      taken.insert(name);
    }
    ForEachEvent([&](const Rows& event) {
      ForEachParameter(event, [&](const std::pair<std::string, int>& place) {
        if (places.emplace(place, places.size()).second) {
          header += ',' + TextCell(UniqueName(taken, place.first, place.second));
        }
      });
    });
  }

  void Write(const Step& step) {
    WriteData(header);
    WriteData(lineEnd);
    ForEachEvent([&](const Rows& event) {
      std::string line = std::to_string(event.Integer(0));
      for (int column = 1; column < event.Columns(); ++column) {
        line += ',' + (event.IsNull(column) ? "" : TextCell(event.Text(column)));
      }
      std::vector<std::string> cells(places.size());
      ForEachParameter(event, [&](const std::pair<std::string, int>& place) {
        const std::string value = ValueInWords(parameters);
        cells[places.at(place)] = IsText(parameters) ? TextCell(value) : value;
      });
      for (const std::string& cell : cells) {
        line += ',' + cell;
      }
      line += lineEnd;
      WriteData(line);
      step();
    });
  }

 private:
  template <typename Visitor>
  void ForEachEvent(const Visitor& visit) {
    for (const Run& run : selection.runs) {
      for (runs.Ask(run.root); runs.Next();) {
        visit(runs);
      }
    }
    if (selection.ofNoRun) {
      for (rest.Ask(selection.ofNoRun->first, selection.ofNoRun->second); rest.Next();) {
        visit(rest);
      }
    }
  }

  /// With its name, and whether it is the first, the second... of that name.
  template <typename Visitor>
  void ForEachParameter(const Rows& event, const Visitor& visit) {
    std::map<std::string, int> seen;
    for (parameters.Ask(event.Integer(0)); parameters.Next();) {
      const std::string name(parameters.Text(1));
      visit({name, ++seen[name]});
    }
  }

  const Selection& selection;
  Rows runs, rest, parameters;
  std::string header;
  std::set<std::string> taken;
  std::map<std::pair<std::string, int>, std::size_t> places;
};

}  // namespace

void WriteCsv(const Store& store, const Selection& selection, const Step& step) {
  Csv csv(store, selection);
  csv.FindColumns();
  csv.Write(step);
}
