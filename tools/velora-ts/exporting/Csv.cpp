#include "exporting/UniqueName.h"
#include "exporting/Writers.h"
#include "output/Output.h"
#include "store/reading/EventRows.h"
#include "store/reading/ParameterValue.h"
#include "store/values/RecordedText.h"

#include "store/Error.h"

#include <array>
#include <map>

namespace Velora::Ts {

using namespace Store;

// RFC 4180 with a byte order mark, so that spreadsheet programs recognize UTF-8: docs/velora-ts.md.

namespace {

constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view lineEnd = "\r\n";
constexpr std::size_t mostColumns = 16384;  // the most that spreadsheet programs accept
constexpr std::array fixedColumns = {"number", "at", "run", "execution", "node", "activity", "event"};

// A text that a spreadsheet program would take for a formula gets an apostrophe before it. So does a text that begins
// with an apostrophe, so that readers can remove it again.
std::string TextCell(const std::string& text) {
  std::string cell = "\"";
  if (!text.empty() && std::string_view("=+-@\t\r\n'").find(text.front()) != std::string_view::npos &&
      !NumberIn(text)) {
    cell += '\'';
  }
  for (const char character : text) {
    cell += character == '"' ? "\"\"" : std::string(1, character);
  }
  const bool plain = !text.empty() && text.front() != ' ' && text.back() != ' ' &&
                     text.find_first_of(",;\"\t\r\n") == std::string::npos;
  return plain ? cell.substr(1) : cell + '"';
}

class Csv {
 public:
  Csv(const Store::Reader& store, const Selection& selection)
      : selection(selection),
        ofRun(store, "v.event_id, v.at, r.guid, x.guid, x.node, a.name, v.name",
              "executions x JOIN events v ON v.execution_id = x.execution_id "
              "JOIN executions r ON r.execution_id = x.root_id "
              "LEFT JOIN activity_versions a ON a.version_id = x.version_id",
              "x.root_id = ?1"),
        ofNoRun(store, "v.event_id, v.at, NULL, NULL, NULL, NULL, v.name", "events v",
                "+v.execution_id IS NULL AND v.at >= ?1 AND v.at < ?2") {}

  void FindColumns() {
    for (const char* name : fixedColumns) {
      header += header.empty() ? utf8Mark : ",";
      header += name;
      taken.insert(name);
    }
    ForEachEvent([&](EventRows& events) {
      ForEachParameter(events, [&](const std::pair<std::string, int>& place) {
        if (places.emplace(place, places.size()).second) {
          ExpectRoomForColumns();
          header += ',' + TextCell(UniqueName(taken, Readable(place.first), place.second));
        }
      });
    });
  }

  void Write(const Step& step) {
    WriteData(header);
    WriteData(lineEnd);
    ForEachEvent([&](EventRows& events) {
      const Rows& event = events.Event();
      std::string line = std::to_string(event.Integer(0));
      for (int column = 1; column < event.Columns(); ++column) {
        line += ',' + (event.IsNull(column) ? "" : TextCell(Readable(event.Text(column))));
      }
      std::vector<std::string> cells(places.size());
      ForEachParameter(events, [&](const std::pair<std::string, int>& place) {
        const std::string value = ValueInWords(events.Parameter());
        cells[places.at(place)] = IsText(events.Parameter()) ? TextCell(value) : value;
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
  void ExpectRoomForColumns() const {
    if (fixedColumns.size() + places.size() > mostColumns) {
      throw Error("the parameters have more names than a table may have columns, which is " +
                  std::to_string(mostColumns) +
                  "; export fewer runs at once, or export without --format, which has no columns");
    }
  }

  template <typename Visitor>
  void ForEachEvent(const Visitor& visit) {
    for (const Run& run : selection.runs) {
      for (ofRun.Ask(run.root); ofRun.Next();) {
        visit(ofRun);
      }
    }
    if (selection.ofNoRun) {
      for (ofNoRun.Ask(selection.ofNoRun->first, selection.ofNoRun->second); ofNoRun.Next();) {
        visit(ofNoRun);
      }
    }
  }

  /// Visits each parameter with its name and its number among the parameters of that name.
  template <typename Visitor>
  static void ForEachParameter(EventRows& events, const Visitor& visit) {
    std::map<std::string, int> seen;
    while (events.NextParameter()) {
      const std::string name(events.Parameter().Text(1));
      visit({name, ++seen[name]});
    }
  }

  const Selection& selection;
  EventRows ofRun, ofNoRun;
  std::string header;
  std::set<std::string> taken;
  std::map<std::pair<std::string, int>, std::size_t> places;
};

}  // namespace

void WriteCsv(const Store::Reader& store, const Selection& selection, const Step& step) {
  Csv csv(store, selection);
  csv.FindColumns();
  csv.Write(step);
}

}  // namespace Velora::Ts
