#include "output/Output.h"
#include "output/Progress.h"
#include "output/Words.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/reading/Runs.h"
#include "store/reading/Unfinished.h"
#include "store/record/Seals.h"
#include "store/record/Sha256.h"
#include "store/soundness/Soundness.h"
#include "verbs/Anchor.h"
#include "verbs/StoreVerb.h"

#include <algorithm>
#include <numeric>

namespace Velora::Ts {

using namespace Store;

namespace {

class Verifier {
 public:
  Verifier(const Store::Reader& store, const std::vector<Seal>& seals)
      : store(store), seals(seals), progress("Hashing records", TotalOf(seals)) {}

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

  /// Computes the hash of what each seal covers again.
  void CompareContents() {
    Sealed sealed;
    for (const Seal& seal : seals) {
      const Numbers upTo = FromText(seal.upTo).value_or(none);
      const auto since = sealed.emplace(seal.run, none).first;
      Compare(seal, since->second, upTo);
      since->second = upTo;
    }
  }

  void FindWhatIsNotSealed() {
    const Sealed sealed = SealedUpTo(seals);
    if (HasMoreOfNoRun(store, sealed)) {
      NotSealed("what belongs to no run");
    }
    for (const Run& run : AllRuns(store)) {
      if (HasMore(store, run, sealed)) {
        NotSealed(InWords(run) + (IsUnfinished(store, run) ? ", which is not finished" : ""));
      }
    }
  }

  ExitCode Finish() const {
    Say(std::to_string(seals.size()) + " seals verified: " + std::to_string(findings) + " findings, " +
        std::to_string(notSealed) + " not sealed");
    return findings > 0 ? Found : notSealed > 0 || !allCompared ? Unsealed : Done;
  }

 private:
  static long long TotalOf(const std::vector<Seal>& seals) {
    return std::accumulate(seals.begin(), seals.end(), 0LL, [](long long sum, const Seal& seal) {
      const Numbers counts = FromText(seal.counts).value_or(Numbers{});
      return sum + std::accumulate(counts.begin(), counts.begin() + Parameters, 0LL);
    });
  }

  void Compare(const Seal& seal, const Numbers& since, const Numbers& upTo) {
    Sha256 sha;
    Records records(store, upTo, [&](std::string_view line) {
      sha.Add(line);
      progress.Add(1);
    });
    std::string words = "what belongs to no run";
    if (seal.run.empty()) {
      records.WriteRest(since);
    } else {
      const std::vector<Run> runs = RunsNamed(store, seal.run);
      const auto run = std::find_if(runs.begin(), runs.end(), [&](const Run& found) { return found.guid == seal.run; });
      if (run == runs.end()) {
        Report({"run " + seal.run + " is missing"});
        return;
      }
      records.WriteRun(run->root, since);
      words = InWords(*run);
    }
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
  const std::vector<Seal>& seals;
  Progress progress;
  int findings = 0;
  int notSealed = 0;
  bool allCompared = true;
};

class VerifyVerb : public StoreVerb {
 public:
  explicit VerifyVerb(Options& options) : StoreVerb(options) {
    options.AddText("--anchor", anchorFile, "Compare the seals with this file, which seal --anchor wrote");
  }

  ExitCode Execute() override {
    const Reader store(Database());
    const std::vector<Seal> seals = ReadSeals(store);
    Verifier verifier(store, seals);
    const Findings ofSchema = SchemaFindings(store);
    verifier.Report(ofSchema.wrong);
    verifier.NoteWhatIsNotCompared(ofSchema.notCompared);
    verifier.Report(DamageFindings(store));
    verifier.Report(ValueFindings(store));
    verifier.Report(ChainFindings(seals));
    if (!anchorFile.empty()) {
      if (const std::string finding = AnchorFinding(ReadAnchor(anchorFile), seals); !finding.empty()) {
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
