#include "asking/WhereArgument.h"
#include "exporting/EventTable.h"
#include "output/EventLines.h"
#include "output/Output.h"
#include "store/asking/SelectedEvents.h"
#include "store/reading/ExecutionPath.h"
#include "store/values/Json.h"
#include "verbs/AbsentNames.h"
#include "verbs/DigitsOption.h"
#include "verbs/StoreVerb.h"
#include "verbs/WindowOptions.h"

#include <optional>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr const char* tables =
    " LEFT JOIN executions x ON x.execution_id = v.execution_id LEFT JOIN executions r ON r.execution_id = x.root_id "
    "LEFT JOIN activity_versions w ON w.version_id = x.version_id LEFT JOIN sessions n ON n.session_id = v.session_id";

// The first ones are those that EventLines.h knows.
enum Column { Number, At, Name, Guid, Node, Key, Run, Instrument };
constexpr const char* columns = "v.event_id, v.at, v.name, x.guid, x.node, v.execution_id, r.guid AS run, n.instrument";

// The fixed columns of an export, and two more.
constexpr int keyInTable = 8;
constexpr const char* columnsOfTable =
    "v.event_id, v.at, r.guid, x.guid, x.node, w.name, v.name, n.instrument, v.execution_id";
const std::vector<std::string> namesOfTable = {"number",   "at",    "run",        "execution", "node",
                                               "activity", "event", "instrument", "path"};

std::optional<long long> KeyAt(const Rows& event, int column) {
  return event.IsNull(column) ? std::nullopt : std::optional(event.Integer(column));
}

class EventsVerb : public StoreVerb {
 public:
  explicit EventsVerb(Options& options) : StoreVerb(options), window(options), digits(options) {
    options.AddRepeatedText("--where", where,
                            "Only events with a parameter that fulfils this, such as 'Dose > 40'; several conditions, "
                            "joined by \"and\" or given one by one, are for the same event",
                            "CONDITION");
    options.AddFlag("--json", json, "Write a JSON array, with times in UTC");
    options.AddFlag("--csv", csv, "Write a table in the format of export --format csv");
    options.Exclude("--json", "--csv");
  }

  ExitCode Execute() override {
    const std::vector<Condition> conditions = WhereArgument(where);
    const Store::EventWindow asked = window.Window();
    EventLines lines(digits.Value(), EventLines::Paths::AtRun);
    const Reader store(Database());
    ExecutionPaths paths(store);
    SelectedEvents events(store, asked, conditions, csv ? columnsOfTable : columns, tables);
    csv ? WriteTable(events, paths) : json ? WriteJson(events, paths) : WriteLines(events, paths, lines);
    FlushOut();
    store.ExpectUntouched();
    return found ? Done : ExplainNothing(store, asked, events.NotMet());
  }

 private:
  bool Next(SelectedEvents& events) {
    const bool any = events.Next();
    found = found || any;
    return any;
  }

  void WriteLines(SelectedEvents& events, ExecutionPaths& paths, EventLines& lines) {
    for (events.Ask(); Next(events);) {
      lines.Write(events.Events(), paths);
    }
  }

  void WriteJson(SelectedEvents& events, ExecutionPaths& paths) {
    const char* separator = "[\n";
    for (events.Ask(); Next(events); separator = ",\n") {
      const Rows& event = events.Events().Event();
      std::string more = ",\"run\":";
      event.AppendValue(more, Run);
      more += ",\"instrument\":";
      event.AppendValue(more, Instrument);
      more += ",\"path\":[";
      for (const PathStep& step : paths.Of(KeyAt(event, Key))) {
        more += more.ends_with('[') ? "" : ",";
        AppendText(more, step.node);
      }
      WriteData(separator + EventAsJson(events.Events(), more + ']'));
    }
    WriteData(*separator == '[' ? "[]\n" : "\n]\n");
  }

  void WriteTable(SelectedEvents& events, ExecutionPaths& paths) {
    EventTable table(namesOfTable);
    for (events.Ask(); events.Next();) {
      table.BeginEvent();
      while (events.Events().NextParameter()) {
        const Rows& parameter = events.Events().Parameter();
        table.Learn(parameter.Text(1), {events.Events().Event().Integer(Number), parameter.Integer(0)});
      }
    }
    table.Arrange();
    table.WriteHead();
    for (events.Ask(); Next(events);) {
      table.Write(events.Events(), {NodesInWords(paths.Of(KeyAt(events.Events().Event(), keyInTable)))});
    }
  }

  ExitCode ExplainNothing(const Store::Reader& store, const Store::EventWindow& asked,
                          const std::set<std::string>& notMet) const {
    ExitCode result = Done;
    if (!asked.name.empty()) {
      result = ExplainAbsence(store, Named::Event, asked.name);
    }
    for (const std::string& name : notMet) {
      result = ExplainAbsence(store, Named::Parameter, name) == Found ? Found : result;
    }
    return result;
  }

  WindowOptions window;
  DigitsOption digits;
  std::vector<std::string> where;
  bool json = false;
  bool csv = false;
  bool found = false;
};

}  // namespace

extern const Registration registeredEvents = {
    "events",
    "Writes the events of a time, of any run and of none, with the nodes down to their execution and their parameters.",
    "events --since '2026-11-24 02:10' --until '2026-11-24 02:20' --where 'Dose > 40'", &Make<EventsVerb>};

}  // namespace Velora::Ts
