#include "output/Output.h"
#include "output/Progress.h"
#include "output/Words.h"
#include "store/reading/Reader.h"
#include "store/reading/SettledReader.h"
#include "store/record/Seals.h"
#include "store/record/Sha256.h"
#include "store/record/Unsealed.h"
#include "store/recording/Writer.h"
#include "store/rotating/Continuation.h"
#include "store/schema/BringUp.h"
#include "store/schema/Versions.h"
#include "store/values/StoredTime.h"
#include "verbs/Anchor.h"
#include "verbs/Sealing.h"
#include "verbs/StoreVerb.h"

#include "store/Error.h"

#include <VeloraSystem/Path.h>

#include <filesystem>
#include <optional>

namespace Velora::Ts {

using namespace Store;

namespace {

/// Seals one state of the store, its own rows: those of others are sealed where they were recorded. Seals are stored
/// some at a time, because a first sealing can make very many.
class Sealer {
 public:
  Sealer(Writer& writer, const Store::Reader& store, const Chain& chain)
      : writer(writer),
        store(store),
        chain(chain),
        end{chain.number, chain.hash},
        upTo(HighestNumbers(store)),
        progress("Hashing records", 0),
        records(store, thisStore, upTo, [this](std::string_view line) {
          sha.Add(line);
          progress.Add(1);
        }) {}

  /// Seals what is not sealed yet. @return the newest seal.
  Anchor SealAll() {
    UnsealedRecords unsealed(store);
    if (unsealed.IsInNoRun(chain.restUpTo)) {
      records.WriteRest(chain.restUpTo);
      Keep("", "what belongs to no run");
    }
    const bool onlyLater = chain.seals > 0 && OnlyLaterRunsHaveMore(store, chain);
    for (RunStates runs = onlyLater ? RunStates(store, thisStore, chain.upTo) : RunStates(store); runs.Next();) {
      const Run& run = runs.Current();
      if (runs.IsUnfinished()) {
        Say("not sealed: " + InWords(run) + " is not finished");
      } else if (!runs.HasSeal() || unsealed.IsIn(run.root, runs.SealedUpTo())) {
        records.WriteRun(run.root, runs.SealedUpTo());
        Keep(run.guid, (StoreOf(run.root) == thisStore ? "" : "what was added to ") + InWords(run));
      }
    }
    Store();
    return end;
  }

 private:
  static constexpr std::size_t sealsAtOnce = 1000;

  void Keep(const std::string& run, const std::string& words) {
    Seal seal;
    seal.run = run;
    seal.upTo = ToText(upTo);
    seal.counts = ToText(records.Counts());
    seal.contentHash = sha.Finish();
    Say("sealed: " + words + ", " + seal.counts);
    fresh.push_back(std::move(seal));
    if (fresh.size() == sealsAtOnce) {
      Store();
    }
  }

  /// Links the new seals to the existing ones and stores all of them in one transaction.
  void Store() {
    if (fresh.empty()) {
      return;
    }
    Transaction transaction(writer);
    writer.HoldSeals();
    Connection& sql = writer.Sql();
    if (sql.Find<long long>("SELECT COALESCE(MAX(seal_id), 0) FROM seals WHERE seal_id < ?1", numbersOfAStore) !=
        end.number) {
      throw Error("another program sealed the TS store at the same time; run velora-ts seal again");
    }
    const std::string now = ToStoredTime(Now());
    Sha256 ofSeal;
    for (Seal& seal : fresh) {
      seal.number = ++end.number;
      seal.previousHash = end.hash;
      ofSeal.Add(LineOf(seal, now, schemaVersion, VELORA_VERSION));
      end.hash = ofSeal.Finish();
      sql.Run(
          "INSERT INTO seals (seal_id, run, sealed_at, up_to, counts, content_hash, previous_hash, schema_version, "
          "tool_version, seal_hash) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10)",
          seal.number, seal.run.empty() ? std::nullopt : std::optional(seal.run), now, seal.upTo, seal.counts,
          seal.contentHash, seal.previousHash, schemaVersion, VELORA_VERSION, end.hash);
    }
    transaction.Commit();
    fresh.clear();
  }

  Writer& writer;
  const Store::Reader& store;
  const Chain& chain;
  Anchor end;
  const PerKind upTo;
  Sha256 sha;
  Progress progress;
  Records records;
  std::vector<Seal> fresh;
};

ExitCode Refuse(const std::string& finding) {
  Say("finding: " + finding);
  Say("because of this, nothing was sealed; velora-ts verify lists all findings");
  return Found;
}

/// Reads the seals of a store to the end, or to the first fault. @return the fault; empty for none.
std::string ReadOn(Chain& chain, const Reader& store) {
  for (SealRows seals(store); seals.Next();) {
    if (const auto broken = chain.Add(seals.Current()); !broken.empty()) {
      return broken.front();
    }
  }
  return "";
}

/// Whether an anchor is of the store in a file, and another store continues that one from its newest seal.
bool IsOfTheOneBefore(const Anchor& anchor, const std::string& before, const Reader& store) {
  const Reader old({Database::Kind::Sqlite, before});
  const std::optional<Continued> previous = PreviousOf(store, thisStore);
  Chain chain;
  return ReadOn(chain, old).empty() && previous && previous->hash == chain.hash &&
         AnchorFinding(anchor, old, thisStore).empty();
}

}  // namespace

ExitCode SealWith(Writer& writer, const Reader& store, const std::string& anchorFile, const std::string& before) {
  Chain chain;
  if (const std::string broken = ReadOn(chain, store); !broken.empty()) {
    return Refuse(broken);
  }
  if (std::error_code unknown; !anchorFile.empty() && std::filesystem::exists(System::PathOf(anchorFile), unknown)) {
    const Anchor anchor = ReadAnchor(anchorFile);
    const std::string finding = AnchorFinding(anchor, store, thisStore);
    if (!finding.empty() && (before.empty() || !IsOfTheOneBefore(anchor, before, store))) {
      return Refuse(finding);
    }
  }
  const Anchor end = Sealer(writer, store, chain).SealAll();
  if (!anchorFile.empty()) {
    WriteAnchor(anchorFile, end);
  }
  Say("newest seal: " + std::to_string(end.number) + ' ' + end.hash);
  return Done;
}

namespace {

class SealVerb : public StoreVerb {
 public:
  explicit SealVerb(Options& options) : StoreVerb(options) {
    options.AddText("--anchor", anchorFile, "Write the newest hash to this file; keep it away from the store", "FILE");
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
