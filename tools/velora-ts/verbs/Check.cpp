#include "asking/ForwardingWords.h"
#include "host-check/HostCheck.h"
#include "output/Output.h"
#include "output/Words.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/reading/Runs.h"
#include "store/reading/Unfinished.h"
#include "store/record/Records.h"
#include "store/soundness/Soundness.h"
#include "verbs/Mistakes.h"
#include "verbs/StoreVerb.h"

#include "store/Error.h"

#include <optional>
#include <string>

namespace Velora::Ts {

using namespace Store;

namespace {

using namespace HostCheck;

/// Counting all rows of a large store would take longer than everything else that check does.
constexpr long long mostCounted = 1000;

/// How many rows a query has, in words.
std::string CountInWords(const Store::Reader& store, const std::string& question) {
  Rows rows(store, "SELECT COUNT(*) FROM (" + question + " LIMIT ?1) AS first");
  rows.Ask(mostCounted + 1).Next();
  return rows.Integer(0) > mostCounted ? "more than " + std::to_string(mostCounted) : std::string(rows.Text(0));
}

void SayHowMuch(const Store::Reader& store) {
  std::string records;
  for (const Kind kind : kinds) {
    const Table& table = TableOf(kind);
    if (kind == Schema || table.since > store.SchemaVersion()) {
      continue;
    }
    records += records.empty() ? "records: " : ", ";
    records.append(CountInWords(store, "SELECT 1 FROM " + table.name)).append(" ").append(table.name);
  }
  Say(records);
  Say("runs: " + CountInWords(store, "SELECT 1 FROM executions WHERE parent_id IS NULL") + ", of these unfinished: " +
      CountInWords(store, "SELECT 1 FROM executions e WHERE +parent_id IS NULL AND execution_id IN (" +
                              UnfinishedRuns(store) + ")"));
  for (const Run& run : RunsNamed(store, "last")) {
    Say("last: " + InWords(run));
  }
}

/// Reports what an existing store contains. @return whether it has no fault.
bool SayWhatIsThere(const Store::Database& database) {
  const Reader store(database);
  Say("store: " + store.Name());
  Say("schema: version " + std::to_string(store.SchemaVersion()));
  SayHowMuch(store);
  const Findings findings = SchemaFindings(store);
  for (const std::string& finding : findings.wrong) {
    Say("finding: " + finding);
  }
  if (!findings.notCompared.empty()) {
    Say("not compared: " + findings.notCompared);
  }
  for (const std::string& mistake : LikelyMistakes(store)) {
    Say("warning: " + mistake);
  }
  for (const std::string& contact : ContactsInWords(store)) {
    Say(contact);
  }
  store.ExpectUntouched();
  return findings.wrong.empty();
}

/// A facility that cannot be used prevents no host from recording.
void SayForwarding(const Store::Database& store, const std::string& folder) {
  try {
    if (const std::optional<Store::Database> facility = ReadFacility(folder)) {
      for (const std::string& line : ForwardingInWords(store, *facility)) {
        Say(line);
      }
    }
  } catch (const Error& error) {
    Say(std::string("warning: ") + error.what());
  }
}

class CheckVerb : public StoreVerb {
 public:
  explicit CheckVerb(Options& options) : StoreVerb(options) {
    options.AddText("--library", start.library,
                    "File of the TS logging library that the host loads; the files of the host can lie in its folder. "
                    "Default: the library that was installed with this program",
                    "FILE");
    options.AddText("--activities", start.activities, "Name of the host's activities file. Default: activities.xml",
                    "NAME");
    options.AddText("--configuration", start.configuration,
                    "Name of the host's instrument configuration. Default: instrument.xml", "NAME");
  }

  ExitCode Execute() override {
    if (IsOfAnother()) {  // no host records there
      return SayWhatIsThere(Database()) ? Done : Found;
    }
    start.folder = Folder();
    const HostOutcome host = CheckHost(start, [](const HostStep& step) { Say(InWords(step)); });
    bool isSound = true;
    try {
      // A store that no host can use can often be read.
      if (host.settings && (host.hasStore || !host.records)) {
        isSound = SayWhatIsThere(host.settings->database);
      }
    } catch (const Error&) {
      if (host.records) {
        throw;
      }
    }
    if (host.settings) {
      SayForwarding(host.settings->database, host.folder);
    }
    return host.records && isSound ? Done : Found;
  }

 private:
  HostStart start{"", LibraryBesideProgram()};
};

}  // namespace

extern const Registration registeredCheck = {
    "check",
    "Does what the start of a host does, undoes it, and says for each step whether it works; then says what the store "
    "contains. --config is the current directory of the host.",
    "check --config /data/scope-7", &Make<CheckVerb>};

}  // namespace Velora::Ts
