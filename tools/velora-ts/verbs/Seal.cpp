#include "output/Output.h"
#include "output/Progress.h"
#include "output/Words.h"
#include "store/reading/Reader.h"
#include "store/reading/Runs.h"
#include "store/reading/SettledReader.h"
#include "store/reading/Unfinished.h"
#include "store/record/Seals.h"
#include "store/record/Sha256.h"
#include "store/recording/Writer.h"
#include "store/schema/Versions.h"
#include "store/values/StoredTime.h"
#include "verbs/Anchor.h"
#include "verbs/StoreVerb.h"

#include "store/Error.h"

#include <filesystem>

namespace Velora::Ts {

using namespace Store;

namespace {

/// Computes new seals from one state of the store.
class Sealer {
 public:
  Sealer(const Store::Reader& store, const std::vector<Seal>& seals)
      : store(store),
        sealed(SealedUpTo(seals)),
        upTo(HighestNumbers(store)),
        progress("Hashing records", 0),
        records(store, upTo, [this](std::string_view line) {
          sha.Add(line);
          progress.Add(1);
        }) {}

  /// The new seals, without the links to the seals before them.
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

  const Store::Reader& store;
  const Sealed sealed;
  const Numbers upTo;
  Sha256 sha;
  Progress progress;
  Records records;
  std::vector<Seal> fresh;
};

/// Links new seals to the existing ones and stores all of them in one transaction.
void Add(Writer& writer, Anchor& end, std::vector<Seal> seals) {
  Transaction transaction(writer);
  writer.HoldSeals();
  Connection& sql = writer.Sql();
  if (sql.Find<long long>("SELECT COALESCE(MAX(seal_id), 0) FROM seals") != end.number) {
    throw Error("another program sealed the TS store at the same time; run velora-ts seal again");
  }
  const std::string now = ToStoredTime(Now());
  Sha256 sha;
  for (Seal& seal : seals) {
    seal.number = ++end.number;
    seal.previousHash = end.hash;
    sha.Add(LineOf(seal, now, schemaVersion, VELORA_VERSION));
    end.hash = sha.Finish();
    sql.Run(
        "INSERT INTO seals (seal_id, run, sealed_at, up_to, counts, content_hash, previous_hash, schema_version, "
        "tool_version, seal_hash) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10)",
        seal.number, seal.run.empty() ? std::nullopt : std::optional(seal.run), now, seal.upTo, seal.counts,
        seal.contentHash, seal.previousHash, schemaVersion, VELORA_VERSION, end.hash);
  }
  transaction.Commit();
}

ExitCode Refuse(const std::string& finding) {
  Say("finding: " + finding);
  Say("because of this, nothing was sealed; velora-ts verify lists all findings");
  return Found;
}

ExitCode SealWith(Writer& writer, const Reader& store, const std::string& anchorFile) {
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
    Add(writer, end, fresh);
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
    options.AddText("--anchor", anchorFile, "Write the newest hash to this file; keep it away from the store");
  }

  ExitCode Execute() override {
    const Store::Database database = Database();
    static_cast<void>(Reader(database));           // fails if there is no store, which a writer makes
    const auto writer = OpenForWriting(database);  // upgrades the schema
    return SealWith(*writer, SettledReader(database), anchorFile);
  }

 private:
  std::string anchorFile;
};

}  // namespace

extern const Registration registeredSeal = {"seal", "Seals every finished run, so that verify finds later changes.",
                                            "seal --anchor /safe/veldmar.anchor", &Make<SealVerb>};

}  // namespace Velora::Ts
