#include "Progress.h"
#include "Records.h"
#include "Runs.h"
#include "Store.h"
#include "Verbs.h"

#include <TSAL/Error.h>

#include <cerrno>
#include <cstdio>
#include <iostream>
#include <system_error>

namespace {

class Exporter {
 public:
  explicit Exporter(const Store& store)
      : store(store),
        progress("Exporting records", 0),
        records(store, HighestNumbers(store), [this](std::string_view line) { Write(line); }) {}

  void Write(const Run& run) { records.WriteRun(run.root); }
  void WriteEventsOfNoRun(const std::string& from, const std::string& before) {
    records.WriteEventsOfNoRun(from, before);
  }
  ExitCode Finish() {
    if (std::fflush(stdout) != 0) {
      FailToWrite();
    }
    store.ExpectUntouched();
    return Done;
  }

 private:
  void Write(std::string_view line) {
    if (std::fwrite(line.data(), 1, line.size(), stdout) != line.size()) {
      FailToWrite();
    }
    progress.Add(1);
  }
  [[noreturn]] static void FailToWrite() {
    throw Quor::TolvaServices::TsError("the records cannot be written: " + std::system_category().message(errno));
  }

  const Store& store;
  Progress progress;
  Records records;
};

}  // namespace

ExitCode ExportRun(const Quor::TolvaServices::Local::Database& database, const std::string& name) {
  const Store store(database);
  const std::vector<Run> runs = RunsNamed(store, name);
  if (runs.size() == 1) {
    Exporter exporter(store);
    exporter.Write(runs.front());
    return exporter.Finish();
  }
  std::cerr << (runs.empty() ? "no run is called '" : "more than one run is called '") << name << "'\n";
  for (const Run& run : runs) {
    std::cerr << InWords(run) << '\n';
  }
  return Found;
}

ExitCode ExportSpan(const Quor::TolvaServices::Local::Database& database, const std::string& since,
                    const std::string& until) {
  const Store store(database);
  const std::string before = until.empty() ? "9999-12-31T24" : until;
  Exporter exporter(store);
  for (const Run& run : RunsBetween(store, since, before)) {
    exporter.Write(run);
  }
  exporter.WriteEventsOfNoRun(since, before);
  return exporter.Finish();
}
