#include "store/record/Sha256.h"

#include "store/values/Json.h"

#include "store/Error.h"

#include <array>

namespace Velora::Store {

namespace {

void Expect(int result) {
  if (result != 1) {
    throw Error("OpenSSL cannot compute SHA-256");
  }
}

}  // namespace

Sha256::Sha256() { Expect(EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr)); }

void Sha256::Add(std::string_view piece) { Expect(EVP_DigestUpdate(context.get(), piece.data(), piece.size())); }

std::string Sha256::Finish() {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned length = 0;
  Expect(EVP_DigestFinal_ex(context.get(), digest.data(), &length));
  Begin();
  std::string digits;
  for (unsigned at = 0; at < length; ++at) {
    AppendHex(digits, static_cast<char>(digest[at]));
  }
  return digits;
}

// Without the name of the algorithm, which takes long to find.
void Sha256::Begin() { Expect(EVP_DigestInit_ex(context.get(), nullptr, nullptr)); }

}  // namespace Velora::Store
