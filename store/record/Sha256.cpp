#include "store/record/Sha256.h"

#include "store/values/Json.h"

#include "store/Error.h"

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
  std::string digits;
  for (const char byte : FinishBytes()) {
    AppendHex(digits, byte);
  }
  return digits;
}

std::string Sha256::FinishBytes() {
  std::string digest(32, '\0');
  Expect(EVP_DigestFinal_ex(context.get(), reinterpret_cast<unsigned char*>(digest.data()), nullptr));
  Begin();
  return digest;
}

// Without the name of the algorithm, which takes long to find.
void Sha256::Begin() { Expect(EVP_DigestInit_ex(context.get(), nullptr, nullptr)); }

std::string Sha256Of(std::string_view bytes) {
  Sha256 sha;
  sha.Add(bytes);
  return sha.FinishBytes();
}

}  // namespace Velora::Store
