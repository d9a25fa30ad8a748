#include "output/Output.h"
#include "output/Progress.h"
#include "output/Words.h"
#include "store/reading/Reader.h"
#include "store/reading/SettledReader.h"
#include "store/record/SealedContents.h"
#include "store/record/Seals.h"
#include "store/record/Sha256.h"
#include "store/record/Unsealed.h"
#include "store/recording/Writer.h"
#include "store/rotating/Continuation.h"
#include "store/schema/BringUp.h"
#include "store/schema/Versions.h"
#include "store/values/StoredTime.h"
#include "verbs/Anchor.h"
#include "verbs/SealSigning.h"
#include "verbs/Sealing.h"
#include "verbs/StoreVerb.h"
#include "verbs/TreeWriter.h"

#include "store/Error.h"

#include <VeloraSystem/Path.h>

#include <filesystem>
#include <optional>
#include <utility>
#include <vector>

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
        tree(store, chain.number),
        found(tree.Sealed()),
        records(store, thisStore, upTo, [this](std::string_view line) { Hash(line); }) {}

  /// Adds to the tree what seals of earlier versions cover. @return what was altered since; empty for nothing.
  std::string CompleteTree() {
    SealedContents contents(store, thisStore, tree.Sealed(), [this](std::string_view line) { Hash(line); });
    while (tree.Sealed() < chain.number && contents.Next()) {
      const Seal& seal = contents.Current();
      if (sha.Finish() != seal.contentHash) {
        return "what seal " + std::to_string(seal.number) + " covers was altered";
      }
      leaves += hasher.OfLeaf(contents.Line());
      Transaction transaction(writer);
      writer.HoldSeals();
      tree.Add(writer.Sql(), seal.number, std::exchange(leaves, ""));
      transaction.Commit();
    }
    return "";
  }

  /// Seals what is not sealed yet. @return the newest seal.
  Anchor SealAll() {
    UnsealedRecords unsealed(store);
    const bool withRest = unsealed.IsInNoRun(chain.restUpTo);
    if (withRest) {
      SealRest();
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
    if (!withRest && HasMore() && (IsNew(Signatures) || IsNew(TimeStamps))) {
      SealRest();
    }
    Store();
    return end;
  }

  SealedTree Tree() { return {found, end.number, tree.Size(), tree.Root()}; }

 private:
  static constexpr std::size_t sealsAtOnce = 1000;
  static constexpr std::size_t leavesAtOnce = 1'000'000;

  struct Fresh {
    Seal seal;
    std::string leaves;
  };

  bool HasMore() const { return !fresh.empty() || end.number > chain.number; }
  bool IsNew(Kind kind) const { return upTo[kind] > chain.restUpTo[kind]; }

  void SealRest() {
    records.WriteRest(chain.restUpTo);
    Keep("", "what belongs to no run");
  }

  void Hash(std::string_view line) {
    sha.Add(line);
    leaves += hasher.OfLeaf(line);
    progress.Add(1);
  }

  void Keep(const std::string& run, const std::string& words) {
    Seal seal;
    seal.run = run;
    seal.upTo = ToText(upTo);
    seal.counts = ToText(records.Counts());
    seal.contentHash = sha.Finish();
    Say("sealed: " + words + ", " + seal.counts);
    leavesOfFresh += leaves.size() / hashBytes;
    fresh.push_back({std::move(seal), std::exchange(leaves, "")});
    if (fresh.size() == sealsAtOnce || leavesOfFresh >= leavesAtOnce) {
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
    for (auto& [seal, hashes] : fresh) {
      seal.number = ++end.number;
      seal.previousHash = end.hash;
      const std::string line = LineOf(seal, now, schemaVersion, VELORA_VERSION);
      ofSeal.Add(line);
      end.hash = ofSeal.Finish();
      sql.Run(
          "INSERT INTO seals (seal_id, run, sealed_at, up_to, counts, content_hash, previous_hash, schema_version, "
          "tool_version, seal_hash) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10)",
          seal.number, seal.run.empty() ? std::nullopt : std::optional(seal.run), now, seal.upTo, seal.counts,
          seal.contentHash, seal.previousHash, schemaVersion, VELORA_VERSION, end.hash);
      tree.Add(sql, seal.number, hashes + hasher.OfLeaf(line));
    }
    transaction.Commit();
    fresh.clear();
    leavesOfFresh = 0;
  }

  Writer& writer;
  const Store::Reader& store;
  const Chain& chain;
  Anchor end;
  const PerKind upTo;
  Sha256 sha;
  TreeHasher hasher;
  std::string leaves;  // of what is not in a seal yet
  Progress progress;
  TreeWriter tree;
  const long long found;  // the newest seal that was in the tree before
  Records records;
  std::vector<Fresh> fresh;
  std::size_t leavesOfFresh = 0;
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

ExitCode SealWith(Writer& writer, const Reader& store, const std::string& anchorFile, const std::string& before,
                  SealedTree* tree) {
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
  Sealer sealer(writer, store, chain);
  if (const std::string altered = sealer.CompleteTree(); !altered.empty()) {
    return Refuse(altered);
  }
  const Anchor end = sealer.SealAll();
  if (!anchorFile.empty()) {
    WriteAnchor(anchorFile, end);
  }
  Say("newest seal: " + std::to_string(end.number) + ' ' + end.hash);
  if (tree) {
    *tree = sealer.Tree();
  }
  return Done;
}

namespace {

class SealVerb : public StoreVerb {
 public:
  explicit SealVerb(Options& options) : StoreVerb(options) {
    options.AddText("--anchor", anchorFile, "Write the newest hash to this file; keep it away from the store", "FILE");
    options.AddText("--key", signing.keyFile,
                    "Sign the newest seal with this private key, which openssl genpkey -algorithm ed25519 wrote",
                    "FILE");
    options.AddText("--signer", signing.signer, "The name of the key in signatures: without spaces and '+'", "NAME");
    options.AddText("--passphrase-file", signing.passphraseFile,
                    "Decrypt the key with the first line of this file. Default: ask on the terminal", "FILE");
    options.AddText("--checkpoint", signing.checkpointFile,
                    "Write what is to be signed with ssh-keygen -Y sign -n velora-ts to this file", "FILE");
    options.AddText("--timestamp-query", signing.queryFile,
                    "Write a query for a time-stamping authority (RFC 3161) to this file", "FILE");
    options.AddText("--signature", taking.signatureFile,
                    "Add the signature that ssh-keygen made of a checkpoint; seals nothing", "FILE");
    options.AddText("--timestamp", taking.answerFile,
                    "Add the answer of a time-stamping authority to a query; seals nothing", "FILE");
    options.Require("--key", "--signer");
    options.Require("--signer", "--key");
    options.Require("--passphrase-file", "--key");
    options.Exclude("--signature", "--timestamp");
    for (const char* const taken : {"--signature", "--timestamp"}) {
      for (const char* const made : {"--anchor", "--key", "--checkpoint", "--timestamp-query"}) {
        options.Exclude(taken, made);
      }
    }
  }

  ExitCode Execute() override {
    const Store::Database database = Database();
    static_cast<void>(Reader(database));           // fails if there is no store, which a writer makes
    const auto writer = OpenForWriting(database);  // upgrades the schema
    if (!taking.signatureFile.empty() || !taking.answerFile.empty()) {
      TakeIn(taking, *writer, Reader(database));
      return Done;
    }
    ExpectName(signing);  // before anything is sealed
    const Reader store = SettledReader(database);
    SealedTree tree;
    const ExitCode code = SealWith(*writer, store, anchorFile, "", &tree);
    if (code == Done) {
      SignNewest(signing, tree, *writer, store);
    }
    return code;
  }

 private:
  std::string anchorFile;
  Signing signing;
  Taking taking;
};

}  // namespace

extern const Registration registeredSeal = {"seal", "Seals every finished run, so that verify finds later changes.",
                                            "seal --anchor /safe/veldmar.anchor", &Make<SealVerb>};

}  // namespace Velora::Ts
