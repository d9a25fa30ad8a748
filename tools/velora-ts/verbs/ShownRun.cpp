#include "verbs/ShownRun.h"

#include "asking/ListedRun.h"
#include "output/EventLines.h"
#include "output/LogLines.h"
#include "output/NoteWords.h"
#include "output/Output.h"
#include "output/StateWords.h"
#include "output/StopWords.h"
#include "output/Terminal.h"
#include "output/TextTable.h"
#include "output/Times.h"
#include "output/Words.h"
#include "store/reading/EventKeys.h"
#include "store/reading/EventRows.h"
#include "store/reading/ExecutionPath.h"
#include "store/reading/Executions.h"
#include "store/reading/Hosts.h"
#include "store/reading/Notes.h"
#include "store/reading/ParameterValue.h"
#include "store/reading/Rows.h"
#include "store/values/Json.h"
#include "store/values/RecordedText.h"
#include "store/values/StoredText.h"
#include "verbs/StepOrder.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr int firstFew = 3;        // parameters of an execution that are shown without --columns
constexpr int deepestIndent = 20;  // levels that are indented; deeper ones show their number

std::string IndentOf(int depth) {
  const std::string blanks(2 * static_cast<std::size_t>(std::min(depth, deepestIndent)), ' ');
  return depth > deepestIndent ? blanks + std::to_string(depth) + ": " : blanks;
}

/// A further condition for the events and parameters of a run, which a server needs not to look into every month.
std::string AmongItsKeys(const Store::Reader& store, const Run& run) {
  const auto [after, upTo] = EventKeysOf(store, run.root);
  const std::string range = "event_id > " + std::to_string(after) + " AND ";
  const std::string end = "event_id <= " + std::to_string(upTo);
  return " AND v." + range + "v." + end + " AND p." + range + "p." + end;
}

class ShownRun {
 public:
  /// @param log null for none.
  ShownRun(const Store::Reader& store, Run run, const ShowOptions& options, LogOfRun* log)
      : store(store),
        run(std::move(run)),
        options(options),
        log(log),
        execution(QueryExecutions(store, "WHERE e.execution_id = ?1")),
        children(store, "SELECT execution_id FROM executions WHERE parent_id = ?1 ORDER BY execution_id"),
        parameters(store,
                   "SELECT p.position, p.name, p.kind, p.value_text, p.value_number, p.event_id FROM events v "
                   "JOIN parameters p ON p.event_id = v.event_id WHERE v.execution_id = ?1" +
                       AmongItsKeys(store, this->run) + " ORDER BY v.event_id, p.position LIMIT ?2"),
        picked(store,
               "SELECT p.position, p.name, p.kind, p.value_text, p.value_number, p.event_id FROM events v "
               "JOIN parameters p ON p.event_id = v.event_id WHERE v.execution_id = ?1 AND p.name = ?2" +
                   AmongItsKeys(store, this->run) + " ORDER BY v.event_id DESC, p.position DESC LIMIT 1"),
        notes(QueryNotes(store)),
        hosts(store),
        order(store, Store::ToStoredText(options.order)) {
    order.ExpectTimesIn(this->run);
  }

  void InWords() {
    WriteHead();
    WriteOut("\n");
    WriteTable();
    if (options.events) {
      WriteOut("\n");
      WriteEvents();
    }
  }

  void AsJson() {
    const Execution root = Find(run.root);
    const KnownState known = hosts.Of(run);
    const bool unfinished = known.state != RunState::Finished;
    const ListedRun head{root, unfinished, known, unfinished ? LastRecorded(store, run) : root.statusAt};
    WriteData('{' + JsonMembers(head, NotesAsJson(notes.Ask(run.root))) + ",\"where\":" + Stopped().AsJson() +
              ",\n\"executions\":[");
    const char* separator = "\n";
    ForEachExecution([&](const Execution& one, int depth) {
      WriteData(separator + ('{' + JsonMembers(one)) + ',' + JsonState(hosts.Of(one)) +
                ",\"depth\":" + std::to_string(depth) + JsonParameters(one) + '}');
      separator = ",\n";
    });
    WriteData("]");
    if (options.events) {
      WriteData(",\"events\":[");
      separator = "\n";
      for (EventRows events = EventsOfRun(store, run.root); events.Next(); separator = ",\n") {
        WriteData(separator + EventAsJson(events));
      }
      WriteData("]");
      WriteLogAsJson();
    }
    WriteData("}\n");
  }

 private:
  Execution Find(long long key) {
    execution.Ask(key).Next();
    return ExecutionAt(execution);
  }

  std::vector<long long> ChildrenOf(long long key) {
    std::vector<long long> keys;
    for (children.Ask(key); children.Next();) {
      keys.push_back(children.Integer(0));
    }
    order.Sort(keys);
    return keys;
  }

  /// Visits the children of the run; with --tree, the run and all levels below it, each execution before its children.
  template <typename Visitor>
  void ForEachExecution(const Visitor& visit) {
    std::vector<std::pair<long long, int>> left{{run.root, 0}};
    while (!left.empty()) {
      const auto [key, depth] = left.back();
      left.pop_back();
      if (depth > 0 || options.tree) {
        visit(Find(key), depth);
      }
      if (depth == 0 || options.tree) {
        const std::vector<long long> below = ChildrenOf(key);
        for (auto child = below.rbegin(); child != below.rend(); ++child) {
          left.emplace_back(*child, depth + 1);
        }
      }
    }
  }

  void WriteHead() {
    const Execution root = Find(run.root);
    const Terminal terminal;
    const auto line = [&](const std::string& name, const std::string& text) {
      WriteOut(text.empty() ? "" : Cut(name + std::string(13 - name.size(), ' ') + text, terminal.width) + '\n');
    };
    const KnownState known = hosts.Of(run);
    const bool unfinished = known.state != RunState::Finished;
    if (unfinished) {
      const std::string last = LastRecorded(store, run);
      for (const std::string& words : Folded(UnfinishedInWords(known, last), terminal.width)) {
        WriteOut(terminal.colours && IsAlarming(known.state) ? "\x1b[1;31m" + words + "\x1b[0m\n" : words + '\n');
      }
      Stopped().Write(last);
      WriteOut("\n");
    }
    line("run", Printable(root.guid));
    line("node", Shown(root.node));
    line("description", Shown(root.description));
    line("activity", ActivityInWords(root));
    line("instrument", Shown(root.instrument) + (root.host == root.instrument ? "" : " on " + Shown(root.host)));
    line("started", LocalTime(root.startedAt, true));
    line("state",
         StateInWords(root, known.state) + (unfinished && !IsRunning(root) ? ", but not everything below it" : ""));
    line("duration", DurationInWords(root, true));
    for (notes.Ask(run.root); notes.Next();) {
      line("note", NoteInWords(notes));
    }
  }

  void WriteEvents() {
    EventLines lines(options.digits);
    ExecutionPaths paths(store);
    EventRows events = EventsOfRun(store, run.root);
    std::optional<LinesBeside<LogFile::SpooledLines>> beside;
    if (log != nullptr) {
      beside.emplace(*log->All());
    }
    lines.WriteAll(events, paths, beside);
  }

  void WriteLogAsJson() {
    if (log == nullptr) {
      return;
    }
    WriteData(",\"log\":[");
    for (const char* separator = "\n"; log->All()->Next(); separator = ",\n") {
      WriteData(separator + LogLineAsJson(log->All()->Current()));
    }
    WriteData("]");
  }

  StopWords Stopped() const { return {store, run, log == nullptr ? nullptr : &log->Around(), options.digits}; }

  void WriteTable() {
    std::vector<TextTable::Column> columns{{.title = "execution", .whole = true},
                                           {.title = "activity", .yielding = true},
                                           {.title = "state"},
                                           {.title = "started", .times = TextTable::Times::OfDay},
                                           {.title = "duration", .number = true}};
    for (const std::string& name : options.columns) {
      columns.push_back({options.units.Head(name)});
    }
    if (options.columns.empty()) {
      columns.push_back({"parameters", false, true});
    }
    TextTable table(columns);
    ForEachExecution([&](const Execution& one, int depth) {
      const RunState state = hosts.Of(one).state;
      std::vector<TextTable::Cell> row{{(options.tree ? IndentOf(depth) : "") + Shown(one.node)},
                                       {ActivityInWords(one)},
                                       {StateInWords(one, state), IsAlarming(state)},
                                       {LocalTime(one.startedAt, false)},
                                       {DurationInWords(one, true)}};
      for (const std::string& name : options.columns) {
        const bool found = Pick(one, name);
        row.push_back({found ? ValueOf(picked, options.digits) : "", false, found && IsNumber(picked)});
      }
      if (options.columns.empty()) {
        row.push_back({FirstFew(one)});
      }
      table.Add(row);
    });
    table.Finish();
  }

  /// Makes `picked` stand on the last value of a parameter. @return whether there is one.
  bool Pick(const Execution& one, const std::string& name) {
    return picked.Ask(one.key, Store::ToStoredText(name)).Next();
  }

  std::string FirstFew(const Execution& one) {
    std::string words;
    int shown = 0;
    for (parameters.Ask(one.key, static_cast<long long>(firstFew + 1)); parameters.Next(); ++shown) {
      words += shown == firstFew ? "  \u2026" : (shown > 0 ? "  " : "") + ParameterInWords(parameters, options.digits);
    }
    return words;
  }

  std::string JsonParameters(const Execution& one) {
    std::string json;
    for (const std::string& name : options.columns) {
      json += json.empty() ? ",\"parameters\":{" : ",";
      AppendText(json, name);
      json += ':';
      if (Pick(one, name)) {
        ExpectShowable(picked);
        AppendParameterValue(json, picked);
      } else {
        json += "null";
      }
    }
    return json.empty() ? json : json + '}';
  }

  const Store::Reader& store;
  const Run run;
  const ShowOptions& options;
  LogOfRun* const log;
  Rows execution, children, parameters, picked, notes;
  Hosts hosts;
  StepOrder order;
};

}  // namespace

void ShowInWords(const Store::Reader& store, const Run& run, const ShowOptions& options, LogOfRun* log) {
  ShownRun(store, run, options, log).InWords();
}

void ShowAsJson(const Store::Reader& store, const Run& run, const ShowOptions& options, LogOfRun* log) {
  ShownRun(store, run, options, log).AsJson();
}

}  // namespace Velora::Ts
