#include "store/reading/Runs.h"
#include "asking/ForwardingWords.h"
#include "asking/ListedRuns.h"
#include "asking/TimeArgument.h"
#include "asking/WhereArgument.h"
#include "output/NoteWords.h"
#include "output/Output.h"
#include "output/StateWords.h"
#include "output/TextTable.h"
#include "output/Times.h"
#include "output/Words.h"
#include "store/reading/Notes.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/values/RecordedText.h"
#include "verbs/AbsentNames.h"
#include "verbs/StoreVerb.h"

namespace Velora::Ts {

using namespace Store;

namespace {

void WriteTable(const Store::Reader& store, ListedRuns& runs) {
  std::vector<TextTable::Column> columns{{.title = "run", .whole = true},
                                         {.title = "started", .times = TextTable::Times::Dated},
                                         {.title = "until", .times = TextTable::Times::Later},
                                         {.title = "duration", .number = true},
                                         {.title = "state", .whole = true},
                                         {.title = "instrument", .yielding = true},
                                         {.title = "activity", .yielding = true},
                                         {.title = "node", .whole = true}};
  const bool hasNotes = HasNotes(store);
  if (hasNotes) {
    columns.push_back({.title = "note", .yielding = true, .below = true});
  }
  Rows notes = QueryNotes(store);
  TextTable table(columns);
  while (runs.Next()) {
    const auto [root, unfinished, known, lastRecorded] = runs.Run();
    std::vector<TextTable::Cell> row{
        {Printable(runs.HasUniqueLetters() ? root.guid.substr(0, shortGuid) : ShortGuid(store, root.guid))},
        {LocalTime(root.startedAt, false)},
        {LocalTime(lastRecorded, false)},
        {unfinished ? Ago(lastRecorded) : DurationInWords(root, false)},
        {unfinished ? UnfinishedInWords(known.state) : StateInWords(root), IsAlarming(known.state)},
        {Shown(root.instrument)},
        {ActivityInWords(root)},
        {Shown(root.node)}};
    if (hasNotes) {
      row.push_back({NotesInShort(notes.Ask(root.key))});
    }
    table.Add(row);
  }
  table.Finish();
}

void WriteJson(const Store::Reader& store, ListedRuns& runs) {
  Rows notes = QueryNotes(store);
  const char* separator = "[\n";
  while (runs.Next()) {
    const ListedRun run = runs.Run();
    WriteData(separator + ('{' + JsonMembers(run, NotesAsJson(notes.Ask(run.root.key)))) + '}');
    separator = ",\n";
  }
  WriteData(*separator == '[' ? "[]\n" : "\n]\n");
}

class RunsVerb : public StoreVerb {
 public:
  explicit RunsVerb(Options& options) : StoreVerb(options) {
    options.AddText("--instrument", filter.instrument, "Only runs of this instrument", "INSTRUMENT");
    options.AddText("--since", filter.since, "Only runs that started at this time or later: " VELORA_TIME_FORMS,
                    "TIME");
    options.AddText("--until", filter.until, "Only runs that started before this time", "TIME");
    options.AddRepeatedText("--where", where,
                            "Only runs with an event that fulfils this condition, such as 'Dose > 40', as for events",
                            "CONDITION");
    options.AddText("--activity", filter.activity, "Only runs of this activity or activity version", "ACTIVITY");
    options.AddText("--node", filter.node, "Only runs of this node", "NODE");
    options.AddText("--text", filter.text,
                    "Only runs with this text in their node, description, activity or a note, in small or capital "
                    "letters, or whose guid begins with it",
                    "TEXT");
    options.AddChoice("--state", filter.state, RunFilter::states, "Only runs of this state");
    options.AddFlag("--unfinished", unfinished, "The same as --state unfinished: an execution did not finish");
    options.Exclude("--unfinished", "--state");
    options.AddCount("--limit", filter.limit, "The highest number of runs. Default: 50");
    options.AddFlag("--json", json, "Write a JSON array, with times in UTC");
  }

  ExitCode Execute() override {
    const std::vector<Condition> conditions = WhereArgument(where);
    filter.since = filter.since.empty() ? "" : TimeArgument(filter.since);
    filter.until = filter.until.empty() ? "" : TimeArgument(filter.until);
    if (unfinished) {
      filter.state = "unfinished";
    }
    const Reader store(Database());
    ListedRuns runs(store, filter, conditions);
    json ? WriteJson(store, runs) : WriteTable(store, runs);
    FlushOut();
    if (runs.IsCut()) {
      Complain("only the newest " + std::to_string(ListedRuns::usualLimit) + " are listed; --limit changes that");
    }
    for (const std::string& silence : SilenceInWords(store, filter.instrument)) {
      Complain(silence);
    }
    store.ExpectUntouched();
    ExitCode result = Done;
    for (const std::string& name : runs.Missing()) {
      result = ExplainAbsence(store, Named::Parameter, name) == Found ? Found : result;
    }
    return result;
  }

 private:
  RunFilter filter;
  std::vector<std::string> where;
  bool unfinished = false, json = false;
};

}  // namespace

extern const Registration registeredRuns = {"runs",
                                            "Lists runs, the newest first. A run that did not finish is running or "
                                            "STOPPED, or UNFINISHED if that is not known.",
                                            "runs --since 2026-11-24 --unfinished", &Make<RunsVerb>};

}  // namespace Velora::Ts
