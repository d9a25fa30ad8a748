#include "exporting/Selection.h"
#include "output/Output.h"
#include "output/Progress.h"
#include "reading/Store.h"
#include "records/Records.h"
#include "verbs/Verbs.h"

namespace Velora::Ts {

using Quor::TolvaServices::Local::Database;

namespace {

void WriteRecords(const Store& store, const Selection& selection, const Step& step) {
  Records records(store, HighestNumbers(store), [&](std::string_view line) {
    WriteData(line);
    step();
  });
  for (const Run& run : selection.runs) {
    records.WriteRun(run.root);
  }
  if (selection.ofNoRun) {
    records.WriteEventsOfNoRun(selection.ofNoRun->first, selection.ofNoRun->second);
  }
}

ExitCode Export(const Store& store, const Selection& selection, const std::string& format) {
  Progress progress("Exporting records", 0);
  const auto write = format == "csv" ? &WriteCsv : format == "trace" ? &WriteTrace : &WriteRecords;
  write(store, selection, [&] { progress.Add(1); });
  FlushOut();
  store.ExpectUntouched();
  return Done;
}

}  // namespace

ExitCode ExportRun(const Database& database, const std::string& name, const std::string& format) {
  const Store store(database);
  const std::optional<Run> run = TheRunNamed(store, name);
  return run ? Export(store, {{*run}, std::nullopt}, format) : Found;
}

ExitCode ExportSpan(const Database& database, const std::string& since, const std::string& until,
                    const std::string& format) {
  const Store store(database);
  const std::string before = until.empty() ? "9999-12-31T24" : until;
  return Export(store, {RunsBetween(store, since, before), std::pair(since, before)}, format);
}

}  // namespace Velora::Ts
