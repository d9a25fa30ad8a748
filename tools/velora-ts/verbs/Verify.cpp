#include "output/Output.h"
#include "output/Progress.h"
#include "output/Words.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/reading/Runs.h"
#include "store/record/Seals.h"
#include "store/record/Sha256.h"
#include "store/record/Unsealed.h"
#include "store/soundness/Soundness.h"
#include "verbs/Anchor.h"
#include "verbs/StoreVerb.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <utility>

namespace Velora::Ts {

using namespace Store;

namespace {

class Verifier {
 public:
  explicit Verifier(const Store::Reader& store)
      : store(store), records(store, none, [this](std::string_view line) {
          sha.Add(line);
          progress->Add(1);
        }) {}

  void Report(const std::vector<std::string>& lines) {
    for (const std::string& line : lines) {
      Say("finding: " + line);
      ++findings;
    }
  }

  /// An attacker can have prevented the comparison, so the result must not be "all sealed".
  void NoteWhatIsNotCompared(const std::string& what) {
    if (!what.empty()) {
      Say("not compared: " + what);
      allCompared = false;
    }
  }

  void CheckChain() {
    for (SealRows seals(store); seals.Next();) {
      Report(chain.Add(seals.Current()));
    }
  }

  /// Computes the hash of what each seal covers again.
  void CompareContents() {
    if (chain.seals == 0) {
      return;
    }
    progress.emplace("Hashing records", std::accumulate(chain.counts.begin(), chain.counts.begin() + Parameters, 0LL));
    Rows before(store, "SELECT up_to FROM seals WHERE run = ?1 AND seal_id < ?2 ORDER BY seal_id DESC LIMIT 1");
    Numbers ofNoRun = none;
    for (SealRows seals(store); seals.Next();) {
      const Seal& seal = seals.Current();
      records.Limit(FromText(seal.upTo).value_or(none));
      if (seal.run.empty()) {
        records.WriteRest(std::exchange(ofNoRun, FromText(seal.upTo).value_or(none)));
        Compare(seal, "what belongs to no run");
        continue;
      }
      const bool again = before.Ask(seal.run, seal.number).Next();
      CompareRun(seal, again ? FromText(before.Text(0)).value_or(none) : none);
    }
    progress.reset();
  }

  void FindWhatIsNotSealed() {
    UnsealedRecords unsealed(store);
    if (unsealed.IsInNoRun(chain.restUpTo)) {
      NotSealed("what belongs to no run");
    }
    for (RunStates runs(store); runs.Next();) {
      if (!runs.HasSeal() || unsealed.IsIn(runs.Current().root, runs.SealedUpTo())) {
        NotSealed(InWords(runs.Current()) + (runs.IsUnfinished() ? ", which is not finished" : ""));
      }
    }
  }

  ExitCode Finish() const {
    Say(std::to_string(chain.seals) + " seals verified: " + std::to_string(findings) + " findings, " +
        std::to_string(notSealed) + " not sealed");
    return findings > 0 ? Found : notSealed > 0 || !allCompared ? Unsealed : Done;
  }

 private:
  void CompareRun(const Seal& seal, const Numbers& since) {
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

  static std::string Difference(const Seal& seal, const Numbers& counts) {
    const Numbers covered = FromText(seal.counts).value_or(counts);
    for (std::size_t kind = 0; kind < counts.size(); ++kind) {
      if (counts[kind] != covered[kind]) {
        return " covers " + std::to_string(covered[kind]) + " records '" + kindNames[kind] + "', " +
               std::to_string(counts[kind]) + " are stored";
      }
    }
    return " covers the same number of records, but other values";
  }

  void NotSealed(const std::string& what) {
    Say("not sealed: " + what);
    ++notSealed;
  }

  const Store::Reader& store;
  Chain chain;
  Sha256 sha;
  std::optional<Progress> progress;
  Records records;
  int findings = 0;
  int notSealed = 0;
  bool allCompared = true;
};

class VerifyVerb : public StoreVerb {
 public:
  explicit VerifyVerb(Options& options) : StoreVerb(options) {
    options.AddText("--anchor", anchorFile, "Compare the seals with this file, which seal --anchor wrote", "FILE");
  }

  ExitCode Execute() override {
    const Reader store(Database());
    Verifier verifier(store);
    const Findings ofSchema = SchemaFindings(store);
    verifier.Report(ofSchema.wrong);
    verifier.NoteWhatIsNotCompared(ofSchema.notCompared);
    verifier.Report(DamageFindings(store));
    verifier.Report(ValueFindings(store));
    verifier.CheckChain();
    if (!anchorFile.empty()) {
      if (const std::string finding = AnchorFinding(ReadAnchor(anchorFile), store); !finding.empty()) {
        verifier.Report({finding});
      }
    }
    verifier.CompareContents();
    verifier.FindWhatIsNotSealed();
    store.ExpectUntouched();
    return verifier.Finish();
  }

 private:
  std::string anchorFile;
};

}  // namespace

extern const Registration registeredVerify = {"verify", "Names each run that is missing, altered or not sealed.",
                                              "verify --anchor /safe/veldmar.anchor", &Make<VerifyVerb>};

}  // namespace Velora::Ts
