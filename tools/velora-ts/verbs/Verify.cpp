#include "output/Output.h"
#include "output/Progress.h"
#include "output/Words.h"
#include "store/reading/KnownStores.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/reading/Runs.h"
#include "store/record/Seals.h"
#include "store/record/Sha256.h"
#include "store/record/Unsealed.h"
#include "store/rotating/Continuation.h"
#include "store/soundness/Origins.h"
#include "store/soundness/Soundness.h"
#include "verbs/Anchor.h"
#include "verbs/StoreVerb.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <utility>
#include <vector>

namespace Velora::Ts {

using namespace Store;

namespace {

/// What was found in all chains.
class Outcome {
 public:
  void Report(const std::vector<std::string>& lines, const std::string& where = "") {
    for (const std::string& line : lines) {
      Say(std::string("finding: ").append(where).append(line));
      ++findings;
    }
  }

  void NotSealed(const std::string& what) {
    Say("not sealed: " + what);
    ++notSealed;
  }

  /// An attacker can have prevented the comparison, so the result must not be "all sealed".
  void NoteWhatIsNotCompared(const std::string& what) {
    if (!what.empty()) {
      Say("not compared: " + what);
      allCompared = false;
    }
  }

  ExitCode Finish() const {
    Say(std::to_string(seals) + " seals verified: " + std::to_string(findings) + " findings, " +
        std::to_string(notSealed) + " not sealed");
    return findings > 0 ? Found : notSealed > 0 || !allCompared ? Unsealed : Done;
  }

  long long seals = 0;

 private:
  int findings = 0;
  int notSealed = 0;
  bool allCompared = true;
};

/// Names a chain of several in findings.
std::string PlaceOf(const Store::Reader& store, const KnownStore& origin) {
  return StoreInWords(store, origin.number) + " (" + origin.guid + "): ";
}

/// Verifies what one store sealed and recorded.
class Verifier {
 public:
  Verifier(const Store::Reader& store, const KnownStore& origin, Outcome& outcome)
      : store(store),
        origin(origin.number),
        where(origin.number == thisStore ? "" : PlaceOf(store, origin)),
        outcome(outcome),
        records(store, origin.number, none, [this](std::string_view line) {
          sha.Add(line);
          progress->Add(1);
        }) {
    chain.origin = origin.number;
  }

  void CheckChain() {
    for (SealRows seals(store, origin); seals.Next();) {
      Report(chain.Add(seals.Current()));
    }
    outcome.seals += chain.seals;
    CheckLink(LinkOf(store, origin));
  }

  /// Computes the hash of what each seal covers again.
  void CompareContents() {
    if (chain.seals == 0) {
      return;
    }
    progress.emplace("Hashing records", std::accumulate(chain.counts.begin(), chain.counts.begin() + Parameters, 0LL));
    const KeyRange ofOrigin = KeysOf(origin).front();
    Rows before(
        store,
        "SELECT up_to FROM seals WHERE run = ?1 AND seal_id > ?2 AND seal_id < ?3 ORDER BY seal_id DESC LIMIT 1");
    PerKind ofNoRun = none;
    for (SealRows seals(store, origin); seals.Next();) {
      const Seal& seal = seals.Current();
      records.Limit(FromText(seal.upTo).value_or(none));
      if (seal.run.empty()) {
        records.WriteRest(std::exchange(ofNoRun, FromText(seal.upTo).value_or(none)));
        Compare(seal, "what belongs to no run");
        continue;
      }
      const bool again = before.Ask(seal.run, ofOrigin.after, seal.number + ShiftOf(origin)).Next();
      CompareRun(seal, again ? FromText(before.Text(0)).value_or(none) : none);
    }
    progress.reset();
  }

  void FindWhatIsNotSealed() {
    UnsealedRecords unsealed(store, origin);
    if (unsealed.IsInNoRun(chain.restUpTo)) {
      NotSealed("what belongs to no run");
    }
    for (RunStates runs(store, origin); runs.Next();) {
      const Run& run = runs.Current();
      if (!runs.HasSeal() || unsealed.IsIn(run.root, runs.SealedUpTo())) {
        NotSealed((StoreOf(run.root) == origin ? "" : "what was added to ") + InWords(run) +
                  (runs.IsUnfinished() ? ", which is not finished" : ""));
      }
    }
  }

 private:
  void CheckLink(const Link& link) {
    if (!link.finding.empty()) {
      Report({link.finding});
    } else if (!link.notCompared.empty()) {
      outcome.NoteWhatIsNotCompared(where + link.notCompared);
    } else if (!link.words.empty()) {
      Say(where + "continues " + link.words);
    }
  }

  void Report(const std::vector<std::string>& lines) { outcome.Report(lines, where); }

  void NotSealed(const std::string& what) {
    outcome.NotSealed(where + what +
                      (origin == thisStore ? "" : "; it is sealed in that store, where it was recorded"));
  }

  void CompareRun(const Seal& seal, const PerKind& since) {
    const std::vector<Run> runs = RunsNamed(store, seal.run);
    const auto run = std::find_if(runs.begin(), runs.end(), [&](const Run& found) { return found.guid == seal.run; });
    if (run == runs.end()) {
      Report({"run " + seal.run + " is missing"});
      return;
    }
    records.WriteRun(run->root, since);
    Compare(seal, InWords(*run));
  }

  void Compare(const Seal& seal, const std::string& words) {
    if (sha.Finish() != seal.contentHash) {
      Report({words + " was altered: seal " + std::to_string(seal.number) + Difference(seal, records.Counts())});
    }
  }

  static std::string Difference(const Seal& seal, const PerKind& counts) {
    const PerKind covered = FromText(seal.counts).value_or(counts);
    for (std::size_t kind = 0; kind < counts.size(); ++kind) {
      if (counts[kind] != covered[kind]) {
        return " covers " + std::to_string(covered[kind]) + " records '" + kindNames[kind] + "', " +
               std::to_string(counts[kind]) + " are stored";
      }
    }
    return " covers the same number of records, but other values";
  }

  const Store::Reader& store;
  const long long origin;
  const std::string where;  // the beginning of what is said of another store
  Outcome& outcome;
  Chain chain;
  Sha256 sha;
  std::optional<Progress> progress;
  Records records;
};

/// How the chains of all stores contradict an anchor: one of them must contain it. Empty if one does.
std::string FindingOfAll(const std::string& file, const Store::Reader& store, const std::vector<KnownStore>& origins) {
  const Anchor anchor = ReadAnchor(file);
  std::string finding;
  for (const KnownStore& origin : origins) {
    finding = AnchorFinding(anchor, store, origin.number);
    if (finding.empty()) {
      return "";
    }
  }
  return origins.size() == 1
             ? finding
             : "no store here has seal " + std::to_string(anchor.number) + " with the hash in '" + file +
                   "': the seals were computed again, or the newest were deleted, or the anchor is of "
                   "another store";
}

class VerifyVerb : public StoreVerb {
 public:
  explicit VerifyVerb(Options& options) : StoreVerb(options) {
    options.AddRepeatedText("--anchor", anchorFiles,
                            "Compare the seals with this file, which seal --anchor wrote; in a store that has the "
                            "records of others, with those of the store that wrote it",
                            "FILE");
  }

  ExitCode Execute() override {
    const Reader store(Database());
    Outcome outcome;
    const Findings ofSchema = SchemaFindings(store);
    outcome.Report(ofSchema.wrong);
    outcome.NoteWhatIsNotCompared(ofSchema.notCompared);
    outcome.Report(DamageFindings(store));
    outcome.Report(ValueFindings(store));
    outcome.Report(OriginFindings(store));
    const std::vector<KnownStore> origins = KnownStores(store);
    for (const std::string& file : anchorFiles) {
      if (const std::string finding = FindingOfAll(file, store, origins); !finding.empty()) {
        outcome.Report({finding});
      }
    }
    for (const KnownStore& origin : origins) {
      Verifier verifier(store, origin, outcome);
      verifier.CheckChain();
      verifier.CompareContents();
      verifier.FindWhatIsNotSealed();
    }
    store.ExpectUntouched();
    return outcome.Finish();
  }

 private:
  std::vector<std::string> anchorFiles;
};

}  // namespace

extern const Registration registeredVerify = {"verify", "Names each run that is missing, altered or not sealed.",
                                              "verify --anchor /safe/veldmar.anchor", &Make<VerifyVerb>};

}  // namespace Velora::Ts
