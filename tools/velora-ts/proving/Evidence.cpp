#include "proving/Evidence.h"

#include "store/record/Sha256.h"

#include <map>
#include <optional>

namespace Velora::Ts {

using namespace Store;

namespace {

class Judging {
 public:
  Judging(const Evidence& evidence, const Signers* signers, const Authorities* authorities)
      : evidence(evidence), signers(signers), authorities(authorities), text(evidence.checkpoint.Text()) {
    for (const Signature& signature : evidence.signatures) {
      stamped.emplace(Sha256Of(signature.text), &signature);
    }
  }

  Judgement Take() {
    for (const Stamp& stamp : evidence.stamps) {
      Date(stamp);
    }
    for (const Signature& signature : evidence.signatures) {
      signature.kind == ofSsh ? JudgeSsh(signature) : JudgeNote(signature);
    }
    return std::move(judgement);
  }

 private:
  void Date(const Stamp& stamp) {
    const std::optional<TimeStamp> read = TimeStampIn(stamp.token);
    if (!read) {
      judgement.findings.push_back(stamp.name + " was altered: it is no time stamp");
      return;
    }
    const auto found = stamped.find(read->imprint);
    const Signature* const signature = found == stamped.end() ? nullptr : found->second;
    if (!signature && Sha256Of(text) != read->imprint) {
      judgement.findings.push_back(stamp.name + " is of something else");
      return;
    }
    if (!authorities) {
      ++judgement.stampsLeft;
      return;
    }
    const Verdict verdict = authorities->On(stamp.token, signature ? signature->text : text);
    if (!verdict.finding.empty()) {
      judgement.findings.push_back(stamp.name + " does not hold: " + verdict.finding);
      return;
    }
    if (!verdict.unknown.empty()) {
      judgement.unknown.push_back(stamp.name + " is by an authority that --tsa does not have: " + verdict.unknown);
      return;
    }
    judgement.times.push_back("existed at " + read->time + (signature ? ", with " + signature->name : ""));
    if (signature) {
      std::string& earliest = dates[signature];
      earliest = earliest.empty() ? read->time : std::min(earliest, read->time);
    }
  }

  void JudgeNote(const Signature& signature) {
    const std::optional<NoteSignature> read = NoteSignatureIn(signature.text);
    if (!read || signature.kind != ofNote) {
      judgement.findings.push_back(signature.name + " was altered: it is no signature");
    } else if (!signers) {
      ++judgement.signaturesLeft;
    } else if (const std::optional<Signer> signer = signers->Of(text, *read)) {
      Count(signature, *signer);
    } else if (signers->HasKeyOf(*read)) {
      judgement.findings.push_back(signature.name + " is not one of " + read->name + " of this");
    } else {
      judgement.unknown.push_back(signature.name + " is by a key of " + read->name + " that the signers do not have");
    }
  }

  void JudgeSsh(const Signature& signature) {
    const std::optional<SshSignature> read = SshSignatureIn(signature.text);
    if (!read || !Signed(text, *read)) {
      judgement.findings.push_back(signature.name +
                                   (read ? " is not one of this" : " was altered: it is no signature"));
    } else if (!signers) {
      ++judgement.signaturesLeft;
    } else if (const std::optional<Signer> signer = signers->Of(text, *read)) {
      Count(signature, *signer);
    } else {
      judgement.unknown.push_back(signature.name + " is by an SSH key that the signers do not have");
    }
  }

  void Count(const Signature& signature, const Signer& signer) {
    if (signer.until.empty()) {
      judgement.signers.push_back(signer.name);
      return;
    }
    const auto date = dates.find(&signature);
    if (date != dates.end() && date->second < signer.until) {
      judgement.signers.push_back(signer.name + ", whose key was withdrawn later");
    } else {
      judgement.unknown.push_back(signature.name + " is by " + signer.name + ", whose key was withdrawn at " +
                                  signer.until + ", and no time stamp shows that it is older");
    }
  }

  const Evidence& evidence;
  const Signers* const signers;
  const Authorities* const authorities;
  const std::string text;
  std::map<std::string, const Signature*> stamped;  // by what a time stamp of them has as its imprint
  std::map<const Signature*, std::string> dates;
  Judgement judgement;
};

}  // namespace

Judgement Judge(const Evidence& evidence, const Signers* signers, const Authorities* authorities) {
  return Judging(evidence, signers, authorities).Take();
}

}  // namespace Velora::Ts
