#include "Schema.h"
#include "Settings.h"
#include "reading/Rows.h"
#include "reading/Runs.h"
#include "reading/Store.h"
#include "soundness/Soundness.h"
#include "verbs/Verbs.h"

#include <TSAL/Methods.h>

#include <iostream>

namespace {

void SayHowMuch(const Store& store) {
  const char* separator = "records: ";
  for (const char* table : {"sessions", "registrations", "activities", "activity_versions", "configurations",
                            "executions", "statuses", "events", "parameters"}) {
    Rows rows(store, "SELECT COUNT(*) FROM " + std::string(table));
    rows.Next();
    std::cout << separator << rows.Text(0) << ' ' << table;
    separator = ", ";
  }
  std::cout << '\n';
  Rows runs(store,
            "SELECT COUNT(*), (SELECT COUNT(*) FROM unfinished WHERE parent_id IS NULL) FROM executions "
            "WHERE parent_id IS NULL");
  runs.Next();
  std::cout << "runs: " << runs.Text(0) << ", of these unfinished: " << runs.Text(1) << '\n';
  for (const Run& run : RunsNamed(store, "last")) {
    std::cout << "last: " << InWords(run) << '\n';
  }
}

}  // namespace

ExitCode Check(const std::string& folder) {
  using namespace Quor::TolvaServices;
  ExitCode result = Done;
  const Local::Settings settings = Local::ReadSettings(folder);
  std::cout << "instrument: " << settings.instrument << '\n';
  if (!Types::TSInstance::IsTsServicePresent()) {
    std::cout << "finding: the variable TSAL_SERVICE is 'absent'; hosts that have it so record nothing\n";
    result = Found;
  }
  const Store store(settings.database);
  std::cout << "store: " << store.Name() << '\n';
  const bool older = store.SchemaVersion() < Local::schemaVersion;
  std::cout << "schema: version " << store.SchemaVersion() << (older ? "; the next host that records brings it up" : "")
            << '\n';
  SayHowMuch(store);
  for (const std::string& finding : SchemaFindings(store)) {
    std::cout << "finding: " << finding << '\n';
    result = Found;
  }
  store.ExpectUntouched();
  return result;
}
