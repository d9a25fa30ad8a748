#include "Connection.h"
#include "Schema.h"
#include "Statement.h"
#include "StoredTime.h"
#include "output/Output.h"
#include "output/Progress.h"
#include "reading/Runs.h"
#include "reading/SettledStore.h"
#include "reading/Store.h"
#include "records/Anchor.h"
#include "records/Seals.h"
#include "records/Sha256.h"
#include "verbs/StoreVerb.h"

#include <TSAL/Error.h>

#include <filesystem>

namespace Velora::Ts {

using namespace Quor::TolvaServices;

namespace {

/// Computes what is to be sealed, from one state of the store.
class Sealer {
 public:
  Sealer(const Store& store, const std::vector<Seal>& seals)
      : store(store),
        sealed(SealedUpTo(seals)),
        upTo(HighestNumbers(store)),
        progress("Hashing records", 0),
        records(store, upTo, [this](std::string_view line) {
          sha.Add(line);
          progress.Add(1);
        }) {}

  /// The seals to add, not yet linked to those before.
  std::vector<Seal> NewSeals() {
    if (HasMoreOfNoRun(store, sealed)) {
      records.WriteRest(Since(""));
      Keep("", "what belongs to no run");
    }
    for (const Run& run : AllRuns(store)) {
      if (IsUnfinished(store, run)) {
        Say("not sealed: " + InWords(run) + " is not finished");
      } else if (HasMore(store, run, sealed)) {
        records.WriteRun(run.root, Since(run.guid));
        Keep(run.guid, InWords(run));
      }
    }
    return fresh;
  }

 private:
  const Numbers& Since(const std::string& run) const {
    const auto known = sealed.find(run);
    return known == sealed.end() ? none : known->second;
  }
  void Keep(const std::string& run, const std::string& words) {
    Seal seal;
    seal.run = run;
    seal.upTo = ToText(upTo);
    seal.counts = ToText(records.Counts());
    seal.contentHash = sha.Finish();
    fresh.push_back(seal);
    Say("sealed: " + words + ", " + seal.counts);
  }

  const Store& store;
  const Sealed sealed;
  const Numbers upTo;
  Sha256 sha;
  Progress progress;
  Records records;
  std::vector<Seal> fresh;
};

/// Links the seals to those before and adds them, all or none.
void Add(Local::Connection& connection, bool onServer, Anchor& end, std::vector<Seal> seals) {
  Local::Transaction transaction(connection);
  if (onServer) {
    Local::Execute(connection.Sql(), "LOCK TABLE seals IN EXCLUSIVE MODE");
  }
  long long newest = 0;
  Local::Execute(connection.Sql(), "SELECT COALESCE(MAX(seal_id), 0) FROM seals", soci::into(newest));
  if (newest != end.number) {
    throw TsError("the TS store was sealed by another program meanwhile; once more");
  }
  const std::string now = Local::ToStoredTime({});
  const int schema = Local::schemaVersion;
  const std::string tool = VELORA_VERSION;
  Sha256 sha;
  for (Seal& seal : seals) {
    seal.number = ++end.number;
    seal.previousHash = end.hash;
    sha.Add(LineOf(seal, now, schema, tool));
    end.hash = sha.Finish();
    soci::indicator ofRun = seal.run.empty() ? soci::i_null : soci::i_ok;
    Local::Execute(connection.Sql(),
                   "INSERT INTO seals (seal_id, run, sealed_at, up_to, counts, content_hash, previous_hash, "
                   "schema_version, tool_version, seal_hash) VALUES (:number, :run, :at, :up, :counts, :content, "
                   ":previous, :schema, :tool, :hash)",
                   soci::use(seal.number), soci::use(seal.run, ofRun), soci::use(now), soci::use(seal.upTo),
                   soci::use(seal.counts), soci::use(seal.contentHash), soci::use(seal.previousHash), soci::use(schema),
                   soci::use(tool), soci::use(end.hash));
  }
  transaction.Commit();
}

ExitCode Refuse(const std::string& finding) {
  Say("finding: " + finding);
  Say("nothing was sealed on top of that; see velora-ts verify");
  return Found;
}

ExitCode SealWith(Local::Connection& connection, const Store& store, const std::string& anchorFile) {
  const std::vector<Seal> seals = ReadSeals(store);
  if (const auto broken = ChainFindings(seals); !broken.empty()) {
    return Refuse(broken.front());
  }
  if (std::error_code unknown; !anchorFile.empty() && std::filesystem::exists(anchorFile, unknown)) {
    if (const std::string finding = AnchorFinding(ReadAnchor(anchorFile), seals); !finding.empty()) {
      return Refuse(finding);
    }
  }
  Anchor end = seals.empty() ? Anchor{0, noHash} : Anchor{seals.back().number, seals.back().hash};
  if (const std::vector<Seal> fresh = Sealer(store, seals).NewSeals(); !fresh.empty()) {
    Add(connection, store.Kind() == Local::Database::Kind::PostgreSql, end, fresh);
  }
  if (!anchorFile.empty()) {
    WriteAnchor(anchorFile, end);
  }
  Say("newest seal: " + std::to_string(end.number) + ' ' + end.hash);
  return Done;
}

class SealVerb : public StoreVerb {
 public:
  explicit SealVerb(Options& options) : StoreVerb(options) {
    options.AddText("--anchor", anchorFile, "Write the newest hash to this file, to be kept away from the store");
  }

  ExitCode Execute() override {
    const Local::Database database = Database();
    static_cast<void>(Store(database));                       // which must be there: a connection would make one
    const auto connection = Local::OpenConnection(database);  // brings it up
    try {
      return SealWith(*connection, SettledStore(database), anchorFile);
    } catch (const soci::soci_error& reason) {
      throw connection->ErrorOf(reason);
    }
  }

 private:
  std::string anchorFile;
};

}  // namespace

extern const Registration registeredSeal = {"seal",
                                            "Seals every finished run, so that verify finds what is changed later.",
                                            "seal --anchor /safe/veldmar.anchor", &Make<SealVerb>};

}  // namespace Velora::Ts
