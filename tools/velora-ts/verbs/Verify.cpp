#include "output/Output.h"
#include "output/Progress.h"
#include "output/Words.h"
#include "proving/EvidenceRows.h"
#include "store/reading/KnownStores.h"
#include "store/reading/Reader.h"
#include "store/reading/Runs.h"
#include "store/record/SealedContents.h"
#include "store/record/Seals.h"
#include "store/record/Sha256.h"
#include "store/record/StoredTree.h"
#include "store/record/Unsealed.h"
#include "store/rotating/Continuation.h"
#include "store/schema/Tables.h"
#include "store/soundness/Origins.h"
#include "store/soundness/Soundness.h"
#include "verbs/Anchor.h"
#include "verbs/StoreVerb.h"

#include <algorithm>
#include <map>
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

  /// @param how "signed" or "dated".
  void NotAttested(const char* how, const std::string& what) {
    Say(std::string("not ").append(how).append(" by who is believed: ").append(what));
    allAttested = false;
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
    return findings > 0 ? Found : notSealed > 0 || !allCompared || !allAttested ? Unsealed : Done;
  }

  long long seals = 0;

 private:
  int findings = 0;
  int notSealed = 0;
  bool allCompared = true;
  bool allAttested = true;
};

/// Whom somebody believes. Each is nothing if nobody is named.
struct Believed {
  std::optional<Signers> signers;
  std::optional<Authorities> authorities;
};

/// Names a chain of several in findings.
std::string PlaceOf(const Store::Reader& store, const KnownStore& origin) {
  return StoreInWords(store, origin.number) + " (" + origin.guid + "): ";
}

/// Verifies what one store sealed and recorded.
class Verifier {
 public:
  Verifier(const Store::Reader& store, const KnownStore& origin, const Believed& believed, Outcome& outcome)
      : store(store),
        origin(origin.number),
        believed(believed),
        evidence(store, origin),
        where(origin.number == thisStore ? "" : PlaceOf(store, origin)),
        outcome(outcome),
        stored(store, origin.number) {
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
    const long long inTheTree = stored.NewestSeal();
    long long awaited = 0;  // the first seal of another store whose hashes have not arrived yet
    SealedContents contents(store, origin, 0, [this](std::string_view line) {
      sha.Add(line);
      leaves += hasher.OfLeaf(line);
      progress->Add(1);
    });
    while (contents.Next()) {
      const Seal& seal = contents.Current();
      const bool untouched = Compare(contents);
      leaves += hasher.OfLeaf(contents.Line());
      const bool mustHave = seal.number <= inTheTree || seal.schema >= TableNamed("tree_leaves").since;
      const bool isAwaited = mustHave && origin != thisStore && seal.number > inTheTree;
      awaited = isAwaited && awaited == 0 ? seal.number : awaited;
      CompareHashes(seal, untouched, mustHave && !isAwaited);
      if (evidence.IsOf(seal.number)) {
        JudgeEvidence(seal.number);
      }
    }
    progress.reset();
    if (awaited > 0) {
      outcome.NoteWhatIsNotCompared(where + "the hashes of seal " + std::to_string(awaited) +
                                    " and behind it in tree_leaves, which have not arrived");
    }
  }

  /// Says who signed, and what is of seals that are not there.
  void SayWhatIsSigned() {
    for (const long long seal : evidence.OfNoSeal(chain.number)) {
      Report({"there is a signature or time stamp of seal " + std::to_string(seal) + ", which is missing"});
    }
    if (const long long rows = stored.RowsBehind(tree.Size()); rows > 0) {
      Report({std::to_string(rows) + " rows of tree_leaves and tree_parts are behind those of all seals"});
    }
    for (const auto& [signer, seal] : newestBy) {
      Say(where + "seal " + std::to_string(seal) + " and all before it: signed by " + signer);
    }
    SayWhatIsLeft(signaturesLeft, " signatures are not compared: --signers names nobody");
    SayWhatIsLeft(stampsLeft, " time stamps are not compared: --tsa names no authority");
    if (believed.signers && newestSigned < chain.number) {
      outcome.NotAttested(
          "signed", where + (newestSigned == 0 ? "no seal" : "no seal behind seal " + std::to_string(newestSigned)));
    }
    if (believed.authorities && !isDated && chain.seals > 0) {
      outcome.NotAttested("dated", where + "no seal");
    }
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
  void JudgeEvidence(long long seal) {
    const Judgement judgement =
        Judge(evidence.Of(seal, tree.Size(), tree.Root()), believed.signers ? &*believed.signers : nullptr,
              believed.authorities ? &*believed.authorities : nullptr);
    const std::string ofSeal = where + "seal " + std::to_string(seal);
    for (const std::string& signer : judgement.signers) {
      newestBy[signer] = newestSigned = seal;
    }
    SayEach(ofSeal + " and all before it: ", judgement.times);
    isDated = isDated || !judgement.times.empty();
    SayEach(ofSeal + ": ", judgement.unknown);
    for (const std::string& finding : judgement.findings) {
      Report({finding + ": seal " + std::to_string(seal)});
    }
    signaturesLeft += judgement.signaturesLeft;
    stampsLeft += judgement.stampsLeft;
  }

  void SayWhatIsLeft(int count, const std::string& words) {
    if (count > 0) {
      Say(where + std::to_string(count) + words);
    }
  }

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

  /// @return whether what a seal covers is what it was.
  bool Compare(const SealedContents& contents) {
    const Seal& seal = contents.Current();
    const bool untouched = sha.Finish() == seal.contentHash;
    if (!seal.run.empty() && !contents.OfRun()) {
      Report({"run " + seal.run + " is missing"});
    } else if (!untouched) {
      Report({(seal.run.empty() ? "what belongs to no run" : InWords(*contents.OfRun())) + " was altered: seal " +
              std::to_string(seal.number) + Difference(seal, contents.Counts())});
    }
    return untouched;
  }

  /// @param untouched whether what the seal covers is what it was. If not, the tree goes on with the leaves that are
  /// kept, so that nothing else is reported of the seals behind it.
  /// @param expected whether the tree must have the leaves of the seal: seals of earlier versions came without.
  void CompareHashes(const Seal& seal, bool untouched, bool expected) {
    std::string hashes = std::exchange(leaves, "");
    if (!untouched) {
      hashes = stored.LeavesOf(seal.number).value_or(SealLeaves{0, hashes}).hashes;
    }
    const long long from = tree.Size();
    const TreeRows computed = AddLeaves(tree, seal.number, hashes), kept = stored.RowsBetween(from, tree.Size());
    if (kept != computed && (expected || kept != TreeRows())) {
      Report({"the hashes of seal " + std::to_string(seal.number) + " in tree_leaves and tree_parts " +
              (kept.leaves.empty() ? "are missing" : "are not those of what it covers")});
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
  const Believed& believed;
  const EvidenceRows evidence;
  std::map<std::string, long long> newestBy;  // by those who are believed
  long long newestSigned = 0;
  bool isDated = false;
  int signaturesLeft = 0, stampsLeft = 0;  // which were not judged
  const std::string where;                 // the beginning of what is said of another store
  Outcome& outcome;
  Chain chain;
  StoredTree stored;
  Sha256 sha;
  TreeHasher hasher;
  GrowingTree tree;
  std::string leaves;  // of the seal that is compared
  std::optional<Progress> progress;
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
    options.AddText("--signers", signersFile,
                    "Name who signed, by the keys in this file: what seal --key said, or allowed signers of OpenSSH, "
                    "one a line",
                    "FILE");
    options.AddText("--tsa", authoritiesFile, "Check time stamps by these certificates of authorities, in PEM", "FILE");
  }

  ExitCode Execute() override {
    Believed believed;
    if (!signersFile.empty()) {
      believed.signers.emplace(signersFile);
    }
    if (!authoritiesFile.empty()) {
      believed.authorities.emplace(authoritiesFile);
    }
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
      Verifier verifier(store, origin, believed, outcome);
      verifier.CheckChain();
      verifier.CompareContents();
      verifier.SayWhatIsSigned();
      verifier.FindWhatIsNotSealed();
    }
    store.ExpectUntouched();
    return outcome.Finish();
  }

 private:
  std::vector<std::string> anchorFiles;
  std::string signersFile, authoritiesFile;
};

}  // namespace

extern const Registration registeredVerify = {"verify", "Names each run that is missing, altered or not sealed.",
                                              "verify --anchor /safe/veldmar.anchor", &Make<VerifyVerb>};

}  // namespace Velora::Ts
