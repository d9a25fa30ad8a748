#include "exporting/UniqueName.h"
#include "exporting/Writers.h"
#include "output/Output.h"
#include "output/Words.h"
#include "store/reading/EventKeys.h"
#include "store/reading/EventRows.h"
#include "store/reading/Executions.h"
#include "store/reading/ParameterValue.h"
#include "store/reading/Rows.h"
#include "store/values/Json.h"
#include "store/values/RecordedText.h"
#include "store/values/StoredTime.h"

#include <algorithm>

namespace Velora::Ts {

using namespace Store;

// The trace-event format. An execution is an asynchronous pair, so that viewers show overlapping ones beside each
// other; a run is a process.

namespace {

enum Thread { ForExecutions = 1, ForEvents };

constexpr const char* eventColumns = "v.event_id, v.at, v.name";

class Trace {
 public:
  Trace(const Store::Reader& store, const Step& step)
      : store(store),
        step(step),
        executions(QueryExecutions(store, "WHERE e.root_id = ?1 ORDER BY e.execution_id")),
        events(store, eventColumns, "events v", "v.execution_id = ?1 AND v.event_id > ?2 AND v.event_id <= ?3",
               "v.event_id", "p.event_id = v.event_id AND p.event_id > ?2 AND p.event_id <= ?3") {}

  void Write(const Selection& selection) {
    start = StartOf(selection);
    WriteData("{\"displayTimeUnit\":\"ms\",\"traceEvents\":[");
    for (const Run& run : selection.runs) {
      WriteRun(run);
    }
    if (selection.ofNoRun) {
      process = 0;
      EventRows rest(store, eventColumns, "events v", "+v.execution_id IS NULL AND v.at >= ?1 AND v.at < ?2",
                     "v.at, v.event_id");
      WriteEvents(rest.Ask(selection.ofNoRun->first, selection.ofNoRun->second), "");
    }
    WriteData("\n]}\n");
  }

 private:
  /// The earliest time of the selection, from which its times are counted.
  long long StartOf(const Selection& selection) const {
    std::string earliest;
    const auto consider = [&](const std::string& time) {
      earliest = earliest.empty() ? time : std::min(earliest, time);
    };
    for (const Run& run : selection.runs) {
      consider(run.startedAt);
    }
    if (selection.ofNoRun) {
      Rows first(store,
                 "SELECT at FROM events WHERE +execution_id IS NULL AND at >= ?1 AND at < ?2 ORDER BY at LIMIT 1");
      if (first.Ask(selection.ofNoRun->first, selection.ofNoRun->second).Next()) {
        consider(std::string(first.Text(0)));
      }
    }
    return Microseconds(earliest).value_or(0);
  }

  long long Since(const std::string& time) const { return Microseconds(time).value_or(start) - start; }

  /// @param members the members that differ between kinds of event, with a comma at the end.
  void Add(const std::string& members, Thread thread, long long time, const std::string& args) {
    WriteData(separator);
    WriteData('{' + members + "\"pid\":" + std::to_string(process) + ",\"tid\":" + std::to_string(thread) +
              ",\"ts\":" + std::to_string(time) + ",\"args\":{" + args + "}}");
    separator = ",\n";
    step();
  }

  static std::string Quoted(const std::string& text) {
    std::string json;
    AppendText(json, text);
    return json;
  }

  void WriteRun(const Run& run) {
    ++process;
    Add("\"ph\":\"M\",\"name\":\"process_name\",", ForExecutions, 0,
        "\"name\":" + Quoted(Readable(run.node) + ' ' + run.guid));
    const auto [after, upTo] = EventKeysOf(store, run.root);
    std::string last;  // when the run was recorded last
    for (executions.Ask(run.root); executions.Next();) {
      const Execution one = ExecutionAt(executions);
      const bool finished = SecondsOf(one).has_value();
      if (!finished && last.empty()) {
        last = LastRecorded(store, run);
      }
      const std::string name = Quoted(Readable(one.node) + (finished ? "" : " (" + StateInWords(one) + ')'));
      const std::string members =
          ",\"cat\":\"execution\",\"id\":\"" + std::to_string(one.key) + "\",\"name\":" + name + ',';
      const long long begin = Since(one.startedAt);
      Add("\"ph\":\"b\"" + members, ForExecutions, begin, JsonMembers(one) + ",\"state\":" + Quoted(StateInWords(one)));
      WriteEvents(events.Ask(one.key, after, upTo), one.node);
      Add("\"ph\":\"e\"" + members, ForExecutions, std::max(begin, Since(finished ? one.statusAt : last)), "");
    }
  }

  void WriteEvents(EventRows& rows, const std::string& node) {
    while (rows.Next()) {
      std::set<std::string> taken{"node"};
      std::string args = "\"node\":" + Quoted(Readable(node));
      while (rows.NextParameter()) {
        args += ',' + Quoted(UniqueName(taken, Readable(rows.Parameter().Text(1)))) + ':';
        if (IsText(rows.Parameter())) {
          args += Quoted(ValueInWords(rows.Parameter()));
        } else {
          AppendParameterValue(args, rows.Parameter());
        }
      }
      Add("\"ph\":\"i\",\"s\":\"t\",\"cat\":\"event\",\"name\":" + Quoted(Readable(rows.Event().Text(2))) + ',',
          ForEvents, Since(std::string(rows.Event().Text(1))), args);
    }
  }

  const Store::Reader& store;
  const Step& step;
  Rows executions;
  EventRows events;
  long long start = 0;
  int process = 0;
  const char* separator = "\n";
};

}  // namespace

void WriteTrace(const Store::Reader& store, const Selection& selection, const Step& step) {
  Trace(store, step).Write(selection);
}

}  // namespace Velora::Ts
