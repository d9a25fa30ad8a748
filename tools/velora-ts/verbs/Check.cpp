#include "PostgreSqlStart.h"
#include "Schema.h"
#include "Settings.h"
#include "output/Output.h"
#include "reading/Rows.h"
#include "reading/Runs.h"
#include "reading/Store.h"
#include "soundness/Soundness.h"
#include "verbs/Verbs.h"

#include <TSAL/Methods.h>

#include <string>

namespace {

void SayHowMuch(const Store& store) {
  std::string records;
  for (const char* table : {"sessions", "registrations", "activities", "activity_versions", "configurations",
                            "executions", "statuses", "events", "parameters"}) {
    Rows rows(store, "SELECT COUNT(*) FROM " + std::string(table));
    rows.Next();
    records += (records.empty() ? "records: " : ", ") + std::string(rows.Text(0)) + ' ' + table;
  }
  Say(records);
  Rows runs(store,
            "SELECT COUNT(*), (SELECT COUNT(*) FROM unfinished WHERE parent_id IS NULL) FROM executions "
            "WHERE parent_id IS NULL");
  runs.Next();
  Say("runs: " + std::string(runs.Text(0)) + ", of these unfinished: " + std::string(runs.Text(1)));
  for (const Run& run : RunsNamed(store, "last")) {
    Say("last: " + InWords(run));
  }
}

/// What keeps a server from taking records.
std::string WhyNotRecorded(const Store& store) {
  using namespace Quor::TolvaServices;
  if (store.Kind() != Local::Database::Kind::PostgreSql) {
    return "";
  }
  Rows answer(store, Local::askWhyNot);
  answer.Next();
  return std::string(answer.Text(0));
}

}  // namespace

ExitCode Check(const std::string& folder) {
  using namespace Quor::TolvaServices;
  ExitCode result = Done;
  const Local::Settings settings = Local::ReadSettings(folder);
  Say("instrument: " + settings.instrument);
  if (!Types::TSInstance::IsTsServicePresent()) {
    Say("finding: the variable TSAL_SERVICE is 'absent'; hosts that have it so record nothing");
    result = Found;
  }
  const Store store(settings.database);
  Say("store: " + store.Name());
  const bool older = store.SchemaVersion() < Local::schemaVersion;
  Say("schema: version " + std::to_string(store.SchemaVersion()) +
      (older ? "; the next host that records brings it up" : ""));
  SayHowMuch(store);
  if (const std::string why = WhyNotRecorded(store); !why.empty()) {
    Say("finding: hosts record nothing: " + why);
    result = Found;
  }
  const Findings findings = SchemaFindings(store);
  for (const std::string& finding : findings.wrong) {
    Say("finding: " + finding);
    result = Found;
  }
  if (!findings.notCompared.empty()) {
    Say("not compared: " + findings.notCompared);
  }
  store.ExpectUntouched();
  return result;
}
