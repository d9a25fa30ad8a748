#include "exporting/EventTable.h"
#include "exporting/Writers.h"
#include "store/reading/EventRows.h"
#include "store/reading/Rows.h"

namespace Velora::Ts {

using namespace Store;

namespace {

const std::vector<std::string> fixedColumns = {"number", "at", "run", "execution", "node", "activity", "event"};

// The executions, runs and activity versions to which the events of a run belong.
constexpr const char* eventsOfRun =
    "events v LEFT JOIN executions x ON x.execution_id = v.execution_id "
    "LEFT JOIN executions r ON r.execution_id = x.root_id LEFT JOIN activity_versions a ON a.version_id = x.version_id";
// As a list, which SQLite sorts once, and not as a join, whose rows it would sort with all their values.
constexpr const char* isOfRun =
    "v.event_id IN (SELECT e.event_id FROM executions o JOIN events e ON e.execution_id = o.execution_id "
    "WHERE o.root_id = ?1)";
constexpr const char* isOfNoRun = "+v.execution_id IS NULL AND v.at >= ?1 AND v.at < ?2";

class Csv {
 public:
  Csv(const Store::Reader& store, const Selection& selection)
      : selection(selection),
        ofRun(store, "v.event_id, v.at, r.guid, x.guid, x.node, a.name, v.name", eventsOfRun, isOfRun),
        ofNoRun(store, "v.event_id, v.at, NULL, NULL, NULL, NULL, v.name", "events v", isOfNoRun, "v.at, v.event_id"),
        namesOfRun(store, std::string(names) + "executions x JOIN events v ON v.execution_id = x.execution_id " +
                              theirs + "x.root_id = ?1 ORDER BY x.execution_id, v.event_id, p.position"),
        namesOfNoRun(
            store, std::string(names) + "events v " + theirs + isOfNoRun + " ORDER BY v.at, v.event_id, p.position") {}

  void FindColumns() {
    for (const Run& run : selection.runs) {
      Learn(namesOfRun.Ask(run.root));
    }
    if (selection.ofNoRun) {
      Learn(namesOfNoRun.Ask(selection.ofNoRun->first, selection.ofNoRun->second));
    }
  }

  void Write(const Step& step) {
    table.WriteHead();
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
        table.BeginEvent();
        current = event;
      }
      table.Learn(parameters.Text(1), {event, parameters.Integer(0)});
    }
    table.Arrange();
  }

  void WriteEvents(EventRows& events, const Step& step) {
    while (events.Next()) {
      table.Write(events);
      step();
    }
  }

  const Selection& selection;
  EventRows ofRun, ofNoRun;
  Rows namesOfRun, namesOfNoRun;
  EventTable table{fixedColumns};
};

}  // namespace

void WriteCsv(const Store::Reader& store, const Selection& selection, const Step& step) {
  Csv csv(store, selection);
  csv.FindColumns();
  csv.Write(step);
}

}  // namespace Velora::Ts
