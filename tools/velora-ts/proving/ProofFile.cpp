#include "proving/ProofFile.h"

#include "proving/SignedNote.h"
#include "store/record/Base64.h"

#include "store/Error.h"

#include <charconv>
#include <optional>
#include <utility>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr std::string_view firstLine = "c2sp.org/tlog-proof@v1", extra = "extra ", indexIs = "index ";
constexpr std::string_view beginStamp = "-----BEGIN PKCS7-----\n", endStamp = "-----END PKCS7-----\n";
constexpr std::string_view beginSsh = "-----BEGIN SSH SIGNATURE-----\n", endSsh = "-----END SSH SIGNATURE-----\n";
constexpr std::size_t armouredColumns = 64;
constexpr std::size_t mostHashes = 64;  // of a tree whose size has 63 bits

std::string Limits() {
  return "at most " + std::to_string(mostOfEach) + " signatures and as many time stamps in a proof";
}

bool IsWithinLimits(const Evidence& evidence) {
  return evidence.signatures.size() <= mostOfEach && evidence.stamps.size() <= mostOfEach;
}

/// What a signed note cannot have, as text.
std::string ExtraOf(const Evidence& evidence) {
  std::string text;
  for (const Signature& signature : evidence.signatures) {
    text += signature.kind == ofSsh ? signature.text : "";
  }
  for (const Stamp& stamp : evidence.stamps) {
    const std::string token = ToBase64(stamp.token);
    text += beginStamp;
    for (std::size_t at = 0; at < token.size(); at += armouredColumns) {
      text += token.substr(at, armouredColumns) + '\n';
    }
    text += endStamp;
  }
  return text;
}

std::string Joined(std::string_view armoured) {
  std::string joined;
  for (const char letter : armoured) {
    joined += letter == '\n' ? "" : std::string(1, letter);
  }
  return joined;
}

/// Takes what ExtraOf() gives. @return whether the text is that.
bool TakeExtra(std::string_view text, Evidence& evidence) {
  while (!text.empty()) {
    const bool isSsh = text.starts_with(beginSsh);
    const std::string_view begin = isSsh ? beginSsh : beginStamp, last = isSsh ? endSsh : endStamp;
    const std::size_t end = text.find(last);
    if (!text.starts_with(begin) || end == std::string_view::npos) {
      return false;
    }
    if (isSsh) {
      evidence.signatures.push_back({"the SSH signature", ofSsh, std::string(text.substr(0, end + last.size()))});
    } else {
      const std::optional<std::string> token = FromBase64(Joined(text.substr(begin.size(), end - begin.size())));
      evidence.stamps.push_back({"the time stamp", token.value_or("")});
    }
    text.remove_prefix(end + last.size());
  }
  return true;
}

/// Reads a file of proofs line by line.
class ProofReader {
 public:
  ProofReader(std::string_view text, const std::string& file) : rest(text), file(file) {}

  bool IsAtEnd() const { return rest.empty(); }

  Proof Next() {
    Proof proof;
    proof.record = std::string(Line("a record, which begins with '{'")) + '\n';
    Expect(proof.record.starts_with('{'), "a record, which begins with '{'");
    Expect(Line("a proof") == firstLine, "'" + std::string(firstLine) + "'");
    std::string_view line = Line("'index' and a number");
    std::string armoured;
    if (line.starts_with(extra)) {
      armoured = FromBase64(line.substr(extra.size())).value_or("");
      Expect(!armoured.empty(), "'extra' and Base64");
      line = Line("'index' and a number");
    }
    proof.index = Number(line);
    for (line = Line("a hash"); !line.empty(); line = Line("a hash, or an empty line")) {
      const std::string hash = FromBase64(line).value_or("");
      Expect(hash.size() == hashBytes && proof.path.size() < mostHashes, "a hash of 32 bytes in Base64");
      proof.path.push_back(hash);
    }
    TakeNote(proof.evidence);
    Expect(TakeExtra(armoured, proof.evidence), "extra data of SSH signatures and time stamps");
    Expect(IsWithinLimits(proof.evidence), Limits());
    return proof;
  }

 private:
  void TakeNote(Evidence& evidence) {
    std::string text;
    for (int part = 0; part < 3; ++part) {
      text += std::string(Line("a checkpoint")) + '\n';
    }
    const std::optional<Checkpoint> checkpoint = CheckpointIn(text);
    Expect(checkpoint.has_value(), "a checkpoint: 'velora-ts/' and a guid, a number of leaves, and a hash");
    evidence.checkpoint = *checkpoint;
    Expect(Line("an empty line").empty(), "an empty line");
    while (!rest.empty() && !rest.starts_with('{')) {
      const std::string line = std::string(Line("a signature")) + '\n';
      const std::optional<NoteSignature> signature = NoteSignatureIn(line);
      Expect(signature.has_value(), "a signature: a dash, the name of a key, and Base64");
      Expect(evidence.signatures.size() < mostOfEach, Limits());
      evidence.signatures.push_back({"the signature of " + signature->name, ofNote, line});
    }
  }

  std::string_view Line(const std::string& expected) {
    ++number;
    const std::size_t end = rest.find('\n');
    Expect(end != std::string_view::npos, expected + ", with a line break at its end");
    const std::string_view line = rest.substr(0, end);
    rest.remove_prefix(end + 1);
    return line;
  }

  long long Number(std::string_view line) {
    long long value = -1;
    const std::string_view digits = line.substr(std::min(indexIs.size(), line.size()));
    std::from_chars(digits.data(), digits.data() + digits.size(), value);
    Expect(line == std::string(indexIs) + std::to_string(value) && value >= 0, "'index' and a number");
    return value;
  }

  void Expect(bool isRight, const std::string& expected) const {
    if (!isRight) {
      throw Error("file '" + file + "', line " + std::to_string(number) + ": expected " + expected);
    }
  }

  std::string_view rest;
  const std::string& file;
  int number = 0;
};

}  // namespace

std::string Proof::Text() const {
  if (!IsWithinLimits(evidence)) {
    throw Error("there are " + std::to_string(evidence.signatures.size()) + " signatures and " +
                std::to_string(evidence.stamps.size()) + " time stamps of this seal; expected " + Limits() +
                ". Seal again, and sign that seal");
  }
  std::string text = record + std::string(firstLine) + '\n';
  if (const std::string more = ExtraOf(evidence); !more.empty()) {
    text += std::string(extra) + ToBase64(more) + '\n';
  }
  text += std::string(indexIs) + std::to_string(index) + '\n';
  for (const Hash& hash : path) {
    text += ToBase64(hash) + '\n';
  }
  text += '\n' + evidence.checkpoint.Text() + '\n';
  for (const Signature& signature : evidence.signatures) {
    text += signature.kind == ofNote ? signature.text : "";
  }
  return text;
}

bool Proof::HasRecord() const {
  TreeHasher hasher;
  return RootBy(path, hasher.OfLeaf(record), index, evidence.checkpoint.size) == evidence.checkpoint.root;
}

std::vector<Proof> ProofsIn(std::string_view text, const std::string& file) {
  std::vector<Proof> proofs;
  for (ProofReader reader(text, file); !reader.IsAtEnd();) {
    proofs.push_back(reader.Next());
  }
  if (proofs.empty()) {
    throw Error("file '" + file + "' is empty; expected what velora-ts prove wrote");
  }
  return proofs;
}

}  // namespace Velora::Ts
