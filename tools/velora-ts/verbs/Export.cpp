#include "asking/TimeArgument.h"
#include "exporting/Writers.h"
#include "output/Output.h"
#include "output/Progress.h"
#include "output/Words.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "verbs/RunForms.h"
#include "verbs/StoreVerb.h"

#include <algorithm>

namespace Velora::Ts {

using namespace Store;

namespace {

class ExportVerb : public StoreVerb {
 public:
  explicit ExportVerb(Options& options) : StoreVerb(options) {
    options.AddText("RUN", name, "The run to export: " VELORA_RUN_FORMS);
    options.AddText("--since", since, "Export runs that started at this time or later: " VELORA_TIME_FORMS, "TIME");
    options.AddText("--until", until, "Export runs that started before this time", "TIME");
    options.AddChoice(
        "--format", format, {"jsonl", "csv", "trace"},
        "jsonl, the canonical form, one record a line; csv, a table with a row for each event and a column for each "
        "parameter; trace, a timeline for viewers of trace events. Default: jsonl");
    options.Exclude("--since", "RUN");
    options.Require("--until", "--since");
  }

  ExitCode Execute() override {
    if (name.empty() == since.empty()) {
      throw UsageError("expected RUN or --since");
    }
    return name.empty() ? ExportSpan() : ExportRun();
  }

 private:
  ExitCode ExportRun() const {
    const Reader store(Database());
    const std::optional<Run> run = TheRunNamed(store, name);
    return run ? Export(store, {{*run}, std::nullopt}) : Found;
  }

  ExitCode ExportSpan() const {
    const std::string from = TimeArgument(since);
    const std::string before = until.empty() ? "9999-12-31T24" : TimeArgument(until);
    const Reader store(Database());
    const Selection selection{RunsBetween(store, from, before), std::pair(from, before)};
    if (selection.runs.empty()) {
      NameEarlierRuns(store, from, before);
    }
    return Export(store, selection);
  }

  /// Says of which runs, which started before a time, there are events in that time.
  void NameEarlierRuns(const Store::Reader& store, const std::string& from, const std::string& before) const {
    constexpr std::size_t mostNamed = 5;
    Rows rows(store,
              "SELECT x.root_id + 0, COUNT(*) FROM events v CROSS JOIN executions x WHERE v.at >= ?1 AND v.at < ?2 AND "
              "x.execution_id = v.execution_id GROUP BY x.root_id + 0 ORDER BY MIN(v.at), x.root_id + 0");
    std::vector<long long> roots;
    long long events = 0;
    for (rows.Ask(from, before); rows.Next();) {
      roots.push_back(rows.Integer(0));
      events += rows.Integer(1);
    }
    if (roots.empty()) {
      return;
    }
    Complain("no run started in this time, but it has " + std::to_string(events) + " events of " +
             std::to_string(roots.size()) + (roots.size() == 1 ? " run" : " runs") +
             " that started before; velora-ts events shows them:");
    for (std::size_t number = 0; number < std::min(roots.size(), mostNamed); ++number) {
      Complain(InWords(RunOf(store, roots[number])));
    }
    if (roots.size() > mostNamed) {
      Complain("and " + std::to_string(roots.size() - mostNamed) + " more");
    }
  }

  ExitCode Export(const Store::Reader& store, const Selection& selection) const {
    Progress progress("Exporting records", 0);
    const auto write = format == "csv" ? &WriteCsv : format == "trace" ? &WriteTrace : &WriteRecords;
    write(store, selection, [&] { progress.Add(1); });
    FlushOut();
    store.ExpectUntouched();
    return Done;
  }

  std::string name, since, until, format = "jsonl";
};

}  // namespace

extern const Registration registeredExport = {
    "export",
    "Writes what was recorded to standard output: a run, or the runs of a time. Either RUN or --since must be given.",
    "export last > run.jsonl\nexport --since 2026-11-24 --until 2026-12-01 --format csv > november.csv",
    &Make<ExportVerb>};

}  // namespace Velora::Ts
