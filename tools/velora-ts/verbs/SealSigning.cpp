#include "verbs/SealSigning.h"

#include "output/Output.h"
#include "output/OutputFile.h"
#include "output/Progress.h"
#include "proving/EvidenceRows.h"
#include "proving/SecretFile.h"
#include "proving/SshSignature.h"
#include "proving/TimeStamp.h"
#include "store/reading/Reader.h"
#include "store/record/Base64.h"
#include "store/record/SealedContents.h"
#include "store/record/Seals.h"
#include "store/record/Sha256.h"
#include "store/record/StoredTree.h"
#include "store/recording/Writer.h"
#include "store/settings/WholeFile.h"
#include "verbs/Sealing.h"
#include "verbs/Verb.h"

#include "store/Error.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>

#include <array>
#include <utility>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr std::uintmax_t largestInput = 1 << 20;

/// The passphrase of a key: the first line of a file, or what somebody types.
std::string Passphrase(const Signing& signing) {
  if (!signing.passphraseFile.empty()) {
    std::string text = ReadSecretFile("--passphrase-file", signing.passphraseFile);
    text.resize(std::min(text.find_first_of("\r\n"), text.size()));
    return text;
  }
  std::array<char, 1024> typed{};
  const std::string words = "Passphrase of '" + signing.keyFile + "': ";
  if (EVP_read_pw_string(typed.data(), static_cast<int>(typed.size()), words.c_str(), 0) != 0) {
    throw Error("the key in file '" + signing.keyFile +
                "' is encrypted, and nobody can be asked; expected a terminal, or --passphrase-file FILE");
  }
  std::string text = typed.data();
  OPENSSL_cleanse(typed.data(), typed.size());
  return text;
}

void WriteFile(const std::string& file, const std::string& beginning, const std::string& content) {
  OutputFile output("file", file, beginning);
  output.Write(content);
  output.Finish();
  Say("written: " + file);
}

/// The seals of a store with what others say of them.
class AttestedSeals {
 public:
  explicit AttestedSeals(const Reader& store) : tree(store), rows(store, KnownStores(store).front()) {}

  long long Newest() { return tree.NewestSeal(); }
  Evidence Of(const SealedTree& sealed) const { return rows.Of(sealed.seal, sealed.size, sealed.root); }
  Evidence Of(long long seal) {
    std::optional<Evidence> evidence = EvidenceOf(rows, tree, seal);
    if (!evidence) {
      ThrowNotWhole(seal);
    }
    return *std::move(evidence);
  }

  /// The newest seal of which something is true; 0 for none. Mostly it is the newest of all.
  template <typename Condition>
  long long Newest(Condition isIt) {
    const long long newest = Newest();
    if (newest == 0 || isIt(Of(newest))) {
      return newest;
    }
    long long found = 0;
    GrowingTree grown;
    for (long long seal = 1; seal < newest; ++seal) {
      const std::optional<SealLeaves> leaves = tree.LeavesOf(seal, grown.Size());
      if (!leaves) {
        ThrowNotWhole(seal);
      }
      for (std::size_t at = 0; at < leaves->hashes.size(); at += hashBytes) {
        grown.Add(leaves->hashes.substr(at, hashBytes));
      }
      found = isIt(rows.Of(seal, grown.Size(), grown.Root())) ? seal : found;
    }
    return found;
  }

  /// The newest seal that a key signed, of the tree as it is stored; 0 for none.
  /// @throws Error when a signature of this key is of another tree.
  long long NewestSignedBy(const NoteKey& key) {
    for (long long seal = rows.NewestSigned(Newest()); seal > 0; seal = rows.NewestSigned(seal - 1)) {
      const Evidence evidence = Of(seal);
      for (const Signature& one : evidence.signatures) {
        const auto read = one.kind == ofNote ? NoteSignatureIn(one.text) : std::nullopt;
        if (!read || !key.IsNamedBy(*read)) {
          continue;
        }
        if (!key.Signed(evidence.checkpoint.Text(), *read)) {
          throw Error("the tree is not the one that " + key.Name() + " signed with seal " + std::to_string(seal) +
                      "; nothing was signed; velora-ts verify lists all findings");
        }
        return seal;
      }
    }
    return 0;
  }

  /// @throws Error when the seals behind one, up to another, or their leaves are not those of the records.
  void ExpectRecords(const Reader& store, long long after, long long upTo) {
    Sha256 sha;
    std::string hashes;
    TreeHasher hasher;
    Progress progress("Comparing records", 0);
    GrowingTree grown(after == 0 ? 0 : Of(after).checkpoint.size,
                      [this](long long first, int level) { return tree.RootOfPart(first, level); });
    SealedContents contents(store, thisStore, after, [&](std::string_view line) {
      sha.Add(line);
      hashes += hasher.OfLeaf(line);
      progress.Add(1);
    });
    for (long long seal = after; seal < upTo && contents.Next();) {
      seal = contents.Current().number;
      if (sha.Finish() != contents.Current().contentHash) {
        throw Error("what seal " + std::to_string(seal) +
                    " covers was altered; nothing was signed; velora-ts verify lists all findings");
      }
      hashes += hasher.OfLeaf(contents.Line());
      const long long from = grown.Size();
      const TreeRows computed = AddLeaves(grown, seal, std::exchange(hashes, ""));
      if (tree.RowsBetween(from, grown.Size()) != computed) {
        throw Error("the tree is not that of the records under seal " + std::to_string(seal) +
                    "; nothing was signed; velora-ts verify lists all findings");
      }
    }
  }

 private:
  [[noreturn]] static void ThrowNotWhole(long long seal) {
    throw Error("the hashes of seal " + std::to_string(seal) + " are not whole; velora-ts verify lists all findings");
  }

  StoredTree tree;
  EvidenceRows rows;
};

std::string StampedTextOf(const Evidence& evidence) {
  return evidence.signatures.empty() ? evidence.checkpoint.Text() : evidence.signatures.back().text;
}

void Insert(Writer& writer, long long seal, const char* kind, const std::string& text) {
  Transaction transaction(writer);
  writer.HoldSeals();
  writer.Sql().Run("INSERT INTO signatures (signature_id, seal, kind, text) VALUES (?1, ?2, ?3, ?4)",
                   writer.NextKey("signatures", "signature_id"), seal, kind, text);
  transaction.Commit();
}

/// Makes what is asked for of the newest seal.
class NewestSeal {
 public:
  NewestSeal(const Signing& signing, const SealedTree& sealed, Writer& writer, const Reader& store)
      : signing(signing), sealed(sealed), writer(writer), store(store), seals(store), evidence(seals.Of(sealed)) {}

  void Sign() {
    const SigningKey key = SigningKey::Read(signing.keyFile, [this] { return Passphrase(signing); });
    const NoteKey ours = key.PublicKey(signing.signer);
    const long long signedBefore = seals.NewestSignedBy(ours);
    if (signedBefore == sealed.seal) {
      Say("signed already: seal " + std::to_string(sealed.seal) + " by " + ours.Text());
      return;
    }
    seals.ExpectRecords(store, signedBefore, sealed.before);
    const std::string line = key.Sign(signing.signer, evidence.checkpoint.Text()).Line();
    Insert(writer, sealed.seal, ofNote, line);
    evidence.signatures.push_back({"", ofNote, line});
    Say("signed: seal " + std::to_string(sealed.seal) + " and all before it, by " + ours.Text());
  }

  void WriteCheckpoint() {
    seals.ExpectRecords(store, 0, sealed.before);
    WriteFile(signing.checkpointFile, OriginOf(""), evidence.checkpoint.Text());
  }

  void WriteQuery() {
    if (evidence.signatures.empty()) {
      seals.ExpectRecords(store, 0, sealed.before);
      Complain("seal " + std::to_string(sealed.seal) +
               " is not signed; the query is of its checkpoint, and shows no signature as older than its key's "
               "withdrawal");
    }
    const std::string query = TimeStampQuery(StampedTextOf(evidence));
    WriteFile(signing.queryFile, query.substr(0, beginningOfQuery), query);
  }

 private:
  static constexpr std::size_t beginningOfQuery = 5;  // up to its version; all are equally long

  const Signing& signing;
  const SealedTree& sealed;
  Writer& writer;
  const Reader& store;
  AttestedSeals seals;
  Evidence evidence;
};

bool IsStampOf(const TimeStamp& stamp, const Evidence& evidence) {
  bool isIt = Sha256Of(evidence.checkpoint.Text()) == stamp.imprint;
  for (const Signature& signature : evidence.signatures) {
    isIt = isIt || Sha256Of(signature.text) == stamp.imprint;
  }
  return isIt;
}

void TakeSignature(const std::string& file, Writer& writer, AttestedSeals& seals) {
  const SshSignature signature = ReadSshSignature(file);
  const long long seal =
      seals.Newest([&](const Evidence& evidence) { return Signed(evidence.checkpoint.Text(), signature); });
  if (seal == 0) {
    throw Error("file '" + file +
                "' is a signature of no seal of this store; expected one of a file that velora-ts seal --checkpoint "
                "wrote, made with ssh-keygen -Y sign -n velora-ts");
  }
  for (const Signature& one : seals.Of(seal).signatures) {
    if (one.text == signature.text) {
      Say("there already: this signature of seal " + std::to_string(seal));
      return;
    }
  }
  Insert(writer, seal, ofSsh, signature.text);
  Say("added: a signature of seal " + std::to_string(seal) + " and all before it");
}

void TakeAnswer(const std::string& file, Writer& writer, AttestedSeals& seals) {
  const std::string token = TokenIn(ReadWholeFile(file, largestInput));
  const std::optional<TimeStamp> stamp = TimeStampIn(token);
  if (!stamp || !IsSigned(token)) {
    throw Error("file '" + file +
                "' has no time stamp that its signer signed; expected the answer of an authority to a query of "
                "velora-ts seal --timestamp-query");
  }
  const long long seal = seals.Newest([&](const Evidence& evidence) { return IsStampOf(*stamp, evidence); });
  if (seal == 0) {
    throw Error("file '" + file +
                "' is a time stamp of no seal of this store, nor of a signature of one; expected the answer to a query "
                "that velora-ts seal --timestamp-query wrote");
  }
  for (const Stamp& one : seals.Of(seal).stamps) {
    if (one.token == token) {
      Say("there already: this time stamp of seal " + std::to_string(seal));
      return;
    }
  }
  Transaction transaction(writer);
  writer.HoldSeals();
  writer.Sql().Run("INSERT INTO timestamps (timestamp_id, seal, token) VALUES (?1, ?2, ?3)",
                   writer.NextKey("timestamps", "timestamp_id"), seal, ToBase64(token));
  transaction.Commit();
  Say("added: a time stamp of seal " + std::to_string(seal) + " and all before it, of " + stamp->time);
}

}  // namespace

void ExpectName(const Signing& signing) {
  if (!signing.keyFile.empty() && !IsKeyName(signing.signer)) {
    // It is not repeated: somebody can give the passphrase here.
    throw UsageError("--signer: expected a name in ASCII, without spaces and without '+'");
  }
}

void SignNewest(const Signing& signing, const SealedTree& sealed, Writer& writer, const Reader& store) {
  if (signing.keyFile.empty() && signing.checkpointFile.empty() && signing.queryFile.empty()) {
    return;
  }
  if (sealed.seal == 0) {
    throw Error("the TS store has no seal yet, because no run is finished; nothing was signed");
  }
  NewestSeal newest(signing, sealed, writer, store);
  if (!signing.keyFile.empty()) {
    newest.Sign();
  }
  if (!signing.checkpointFile.empty()) {
    newest.WriteCheckpoint();
  }
  if (!signing.queryFile.empty()) {
    newest.WriteQuery();
  }
}

void TakeIn(const Taking& taking, Writer& writer, const Reader& store) {
  AttestedSeals seals(store);
  if (!taking.signatureFile.empty()) {
    TakeSignature(taking.signatureFile, writer, seals);
  }
  if (!taking.answerFile.empty()) {
    TakeAnswer(taking.answerFile, writer, seals);
  }
}

}  // namespace Velora::Ts
