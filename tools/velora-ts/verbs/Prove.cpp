#include "output/Output.h"
#include "output/OutputFile.h"
#include "output/Words.h"
#include "proving/EvidenceRows.h"
#include "proving/ProofFile.h"
#include "store/reading/Reader.h"
#include "store/record/Records.h"
#include "store/record/Seals.h"
#include "store/record/StoredTree.h"
#include "store/schema/Tables.h"
#include "store/settings/WholeFile.h"
#include "verbs/RunForms.h"
#include "verbs/StoreVerb.h"

#include "store/Error.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr std::uintmax_t largestProof = std::uintmax_t{256} << 20;

/// A record under a seal.
struct Sealed {
  long long seal = 0;
  std::string record;
};

/// Makes proofs of what one store sealed.
class ChainProver {
 public:
  ChainProver(const Reader& store, const KnownStore& origin)
      : store(store), origin(origin.number), tree(store, origin.number), evidence(store, origin) {}

  Proof Of(const Sealed& sealed) {
    const std::optional<SealLeaves> leaves = tree.LeavesOf(sealed.seal);
    const long long place = leaves ? PlaceOf(sealed.record, *leaves) : -1;
    if (!leaves && sealed.seal > tree.NewestSeal()) {
      throw Error("seal " + std::to_string(sealed.seal) +
                  " has no hashes in the tree yet; expected velora-ts seal first, where it was recorded");
    }
    if (place < 0) {
      throw Error("the hash of what is to be proved is not among those of seal " + std::to_string(sealed.seal) +
                  "; velora-ts verify says what was altered");
    }
    Proof proof{sealed.record, leaves->first + place, {}, SignedSince(sealed.seal)};
    proof.path = PathOf(proof.index, proof.evidence.checkpoint.size,
                        [this](long long first, int level) { return tree.RootOfPart(first, level); });
    return proof;
  }

  /// The seals of a run, which say how many records they cover, and their hash.
  std::vector<Sealed> OfRun(const Run& run) {
    Rows seals(store, "SELECT seal_id FROM seals WHERE run = ?1 AND seal_id > ?2 AND seal_id <= ?3 ORDER BY seal_id");
    const KeyRange keys = KeysOf(origin).front();
    std::vector<Sealed> found;
    for (seals.Ask(run.guid, keys.after, keys.upTo); seals.Next();) {
      const long long number = seals.Integer(0) - ShiftOf(origin);
      SealRows row(store, origin, number - 1, number);
      row.Next();
      found.push_back({number, row.Line()});
    }
    if (found.empty()) {
      throw Error(InWords(run) + " is not sealed; expected velora-ts seal first, where it was recorded");
    }
    return found;
  }

  Sealed OfEvent(long long event) {
    std::string record;
    Records records(store, origin, HighestNumbers(store, origin), [&](std::string_view line) { record = line; });
    EventRows rows = QueryEvent(store);
    records.BeginEventsOfNoRun();
    if (!rows.Ask(event).Next()) {
      throw Error("there is no event " + std::to_string(event) + "; velora-ts events shows their numbers");
    }
    records.WriteEvent(rows);
    return {SealOfEvent(event), record};
  }

 private:
  /// The first seal that covers an event.
  long long SealOfEvent(long long event) {
    Rows root(store,
              "SELECT r.guid FROM events v JOIN executions x ON x.execution_id = v.execution_id JOIN executions r ON "
              "r.execution_id = x.root_id WHERE v.event_id = ?1");
    const bool isOfRun = root.Ask(event).Next();
    Rows seals(store, std::string("SELECT seal_id, up_to FROM seals WHERE ") +
                          (isOfRun ? "run = ?3" : "run IS NULL AND ?3 = ''") +
                          " AND seal_id > ?1 AND seal_id <= ?2 ORDER BY seal_id");
    const KeyRange keys = KeysOf(origin).front();
    const long long number = NumberOf(event);
    for (seals.Ask(keys.after, keys.upTo, std::string(isOfRun ? root.Whole(0) : "")); seals.Next();) {
      if (FromText(seals.Text(1)).value_or(none)[Events] >= number) {
        return seals.Integer(0) - ShiftOf(origin);
      }
    }
    throw Error("event " + std::to_string(event) +
                " is not sealed; expected velora-ts seal first, where it was recorded");
  }

  static long long PlaceOf(const std::string& record, const SealLeaves& leaves) {
    const Hash hash = TreeHasher().OfLeaf(record);
    for (std::size_t at = leaves.hashes.find(hash); at != std::string::npos; at = leaves.hashes.find(hash, at + 1)) {
      if (at % hashBytes == 0) {
        return static_cast<long long>(at / hashBytes);
      }
    }
    return -1;
  }

  /// What others say of the newest signed seal, if it covers another one.
  const Evidence& SignedSince(long long seal) {
    const long long newestSigned = evidence.NewestSigned(tree.NewestSeal());
    if (newestSigned < seal) {
      throw Error("neither seal " + std::to_string(seal) +
                  " nor a later one is signed; expected velora-ts seal --key, or --signature, first");
    }
    if (!newest) {
      newest = EvidenceOf(evidence, tree, newestSigned);
      if (!newest) {
        throw Error("the hashes of seal " + std::to_string(newestSigned) +
                    " are not whole; velora-ts verify lists all findings");
      }
    }
    return *newest;
  }

  const Reader& store;
  const long long origin;
  StoredTree tree;
  const EvidenceRows evidence;
  std::optional<Evidence> newest;
};

/// The number that a text is; nothing for another text, also for one that can be a guid's beginning with zeros.
std::optional<long long> NumberIn(const std::string& text) {
  long long number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() && std::to_string(number) == text
             ? std::optional(number)
             : std::nullopt;
}

/// The event that a name is the number of; nothing for the name of a run.
/// @throws Error when it is neither.
std::optional<long long> EventNamed(const Reader& store, const std::string& name) {
  const std::optional<long long> number = NumberIn(name);
  if (!number) {
    return std::nullopt;
  }
  EventRows rows = QueryEvent(store);
  const bool isEvent = rows.Ask(*number).Next();
  const bool isRun = (!isEvent || name.size() >= shortGuid) && !RunsNamed(store, name).empty();
  if (!isEvent && !isRun) {
    throw Error("there is no event " + name + "; velora-ts events shows their numbers");
  }
  if (isEvent && isRun) {
    Complain("event " + name + " is proved; for the run whose guid begins so, give more of the guid");
  }
  return isEvent ? number : std::nullopt;
}

/// Reads what is to be written as those read it who get it.
/// @throws Error when it does not show its records.
void ExpectProofs(const std::string& text) {
  static constexpr const char* whatNow = "; nothing was written; velora-ts verify says what was altered";
  const auto holds = [](const Proof& proof) { return proof.HasRecord(); };
  try {
    const std::vector<Proof> proofs = ProofsIn(text, "to write");
    if (std::all_of(proofs.begin(), proofs.end(), holds)) {
      return;
    }
  } catch (const Error& error) {
    throw Error("the store has signatures or time stamps that no proof can have: " + std::string(error.what()) +
                whatNow);
  }
  throw Error(std::string("the hashes of the tree do not lead from the record to what is signed") + whatNow);
}

class ProveVerb : public StoreVerb {
 public:
  explicit ProveVerb(Options& options) : StoreVerb(options) {
    options.AddTexts("RECORD", names, "What to prove: events by their numbers, and runs: " VELORA_RUN_FORMS);
    options.AddText("-o,--output", output, "The file to write", "FILE");
    options.AddText("--check", checked, "Check a file that prove wrote; needs no store", "FILE");
    options.AddText("--signers", signersFile, "With --check: whose signatures count, as for verify", "FILE");
    options.AddText("--tsa", authoritiesFile, "With --check: whose time stamps count, as for verify", "FILE");
    options.Exclude("--check", "RECORD");
    options.Exclude("--check", "--output");
    options.Require("--check", "--signers");
    options.Require("--signers", "--check");
    options.Require("--tsa", "--check");
    options.Require("--output", "RECORD");
    options.Require("RECORD", "--output");
  }

  ExitCode Execute() override {
    if (names.empty() == checked.empty()) {
      throw UsageError("expected RECORD and -o, or --check");
    }
    return checked.empty() ? Prove() : Check();
  }

 private:
  ExitCode Prove() const {
    const Reader store(Database());
    if (store.SchemaVersion() < TableNamed("tree_leaves").since) {
      throw Error("the store has schema version " + std::to_string(store.SchemaVersion()) +
                  ", which has no tree to prove from; expected velora-ts seal first, which upgrades it");
    }
    std::map<long long, std::unique_ptr<ChainProver>> provers;
    for (const KnownStore& origin : KnownStores(store)) {
      provers.emplace(origin.number, std::make_unique<ChainProver>(store, origin));
    }
    const auto of = [&](long long key) -> ChainProver& {
      const auto found = provers.find(StoreOf(key));
      if (found == provers.end()) {
        throw Error("there is no event " + std::to_string(key) + "; velora-ts events shows their numbers");
      }
      return *found->second;
    };
    std::string text;
    for (const std::string& name : names) {
      if (const std::optional<long long> event = EventNamed(store, name)) {
        ChainProver& prover = of(*event);
        text += prover.Of(prover.OfEvent(*event)).Text();
        continue;
      }
      const std::optional<Run> run = TheRunNamed(store, name);
      if (!run) {
        return Found;
      }
      ChainProver& prover = of(run->root);
      for (const Sealed& sealed : prover.OfRun(*run)) {
        text += prover.Of(sealed).Text();
      }
    }
    store.ExpectUntouched();
    ExpectProofs(text);
    OutputFile file("file", output, "{");
    file.Write(text);
    file.Finish();
    Complain("written: " + output);
    return Done;
  }

  ExitCode Check() const {
    const Signers signers(signersFile);
    std::optional<Authorities> authorities;
    if (!authoritiesFile.empty()) {
      authorities.emplace(authoritiesFile);
    }
    int wrong = 0, notSigned = 0;
    const std::vector<Proof> proofs = ProofsIn(ReadWholeFile(checked, largestProof), checked);
    for (const Proof& proof : proofs) {
      Say(proof.record.substr(0, proof.record.size() - 1));
      if (!proof.HasRecord()) {
        Say("finding: the hashes do not lead from the record to what is signed");
        ++wrong;
        continue;
      }
      const Judgement judgement = Judge(proof.evidence, &signers, authorities ? &*authorities : nullptr);
      wrong += SayWhatIsFound(proof.evidence.checkpoint, judgement);
      notSigned += judgement.signers.empty() ? 1 : 0;
    }
    Say(std::to_string(proofs.size()) + " proofs checked: " + std::to_string(wrong) + " findings, " +
        std::to_string(notSigned) + " not signed by who is believed");
    return wrong > 0 ? Found : notSigned > 0 ? Unsealed : Done;
  }

  /// @return the number of findings.
  static int SayWhatIsFound(const Checkpoint& checkpoint, const Judgement& judgement) {
    const std::string place = "under " + checkpoint.origin + ", " + std::to_string(checkpoint.size) + " leaves: ";
    SayEach(place + "signed by ", judgement.signers);
    SayEach(place, judgement.times);
    SayEach(place, judgement.unknown);
    if (judgement.stampsLeft > 0) {
      Say(place + "a time stamp is not compared: --tsa names no authority");
    }
    SayEach("finding: ", judgement.findings);
    return static_cast<int>(judgement.findings.size());
  }

  std::vector<std::string> names;
  std::string output, checked, signersFile, authoritiesFile;
};

}  // namespace

extern const Registration registeredProve = {
    "prove",
    "Writes a record of the store with what shows, without the store, that it is under a signed seal; or checks that.",
    "prove last 1234 -o focus.proof\nprove --check focus.proof --signers signers.txt", &Make<ProveVerb>};

}  // namespace Velora::Ts
