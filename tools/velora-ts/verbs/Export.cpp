#include "exporting/Writers.h"
#include "output/Output.h"
#include "output/Progress.h"
#include "output/Words.h"
#include "store/reading/Reader.h"
#include "verbs/StoreVerb.h"
#include "verbs/TimeArgument.h"

namespace Velora::Ts {

using namespace Store;

namespace {

class ExportVerb : public StoreVerb {
 public:
  explicit ExportVerb(Options& options) : StoreVerb(options) {
    options.AddText("RUN", name, "The run to export");
    options.AddText("--since", since, "Export runs that started at this time or later: " VELORA_TIME_FORMS, "TIME");
    options.AddText("--until", until, "Export runs that started before this time", "TIME");
    options.AddChoice(
        "--format", format, {"jsonl", "csv", "trace"},
        "jsonl, the canonical form; csv, a row for each event; trace, for timeline viewers. Default: jsonl");
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
    return Export(store, {RunsBetween(store, from, before), std::pair(from, before)});
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
    "Writes what was recorded to standard output. RUN is a guid, the first letters of one, \"last\" for the run "
    "recorded last, or a node that only one run has.",
    "export last > run.jsonl\n  velora-ts export --since 2026-11-24 --until 2026-12-01 --format csv > november.csv",
    &Make<ExportVerb>};

}  // namespace Velora::Ts
