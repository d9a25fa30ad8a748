// A file of proofs that somebody was given: whatever it is, it is refused in words or read, and what was read is
// written as a file that reads the same. Behind it, the parts that come in files of their own.

#include "Fuzz.h"
#include "proving/ProofFile.h"
#include "proving/SshSignature.h"

#include "store/Error.h"

#include <string>
#include <string_view>

namespace {

using namespace Velora;
using namespace Velora::Ts;

std::string TextOf(const std::vector<Proof>& proofs) {
  std::string text;
  for (const Proof& proof : proofs) {
    static_cast<void>(proof.HasRecord());
    static_cast<void>(Judge(proof.evidence, nullptr, nullptr));
    text += proof.Text();
  }
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  try {
    const std::string text = TextOf(ProofsIn(input, "a.proof"));
    Require(TextOf(ProofsIn(text, "a.proof")) == text, "what was written reads the same");
  } catch (const Store::Error&) {
    // The words are for a person.
  }
  const std::string token = TokenIn(input);
  Require(token.empty() || TokenIn(input) == token, "a token is the same each time");
  static_cast<void>(TimeStampIn(input));
  if (const auto signature = SshSignatureIn(input)) {
    static_cast<void>(Signed("text", *signature));
  }
  return 0;
}
