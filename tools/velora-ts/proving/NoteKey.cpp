#include "proving/NoteKey.h"

#include "proving/OpenSsl.h"
#include "proving/SecretFile.h"

#include "store/record/Base64.h"
#include "store/record/Sha256.h"
#include "store/values/Json.h"

#include "store/Error.h"

#include <openssl/crypto.h>
#include <openssl/err.h>
#include <openssl/pem.h>

#include <algorithm>
#include <utility>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr char ofEd25519 = 1;
constexpr std::size_t keyBytes = 32, idBytes = 4, signatureBytes = 64;

using Context = std::unique_ptr<EVP_MD_CTX, Freed<&EVP_MD_CTX_free>>;

/// What OpenSSL asks for while it reads an encrypted key.
struct Passphrase {
  const std::function<std::string()>& ask;
  bool wasAsked = false;
  std::exception_ptr failure = nullptr;
};

int Give(char* to, int size, int, void* from) {
  auto& passphrase = *static_cast<Passphrase*>(from);
  passphrase.wasAsked = true;
  try {
    std::string text = passphrase.ask();
    const auto length = static_cast<int>(std::min(text.size(), static_cast<std::size_t>(size)));
    std::copy_n(text.data(), length, to);
    OPENSSL_cleanse(text.data(), text.size());
    return length;
  } catch (...) {  // no exception may pass OpenSSL
    passphrase.failure = std::current_exception();
    return -1;
  }
}

}  // namespace

NoteKey::NoteKey(std::string name, std::string publicKey) : name(std::move(name)), publicKey(std::move(publicKey)) {}

std::optional<NoteKey> NoteKey::In(std::string_view text) {
  const std::size_t first = text.find('+'), second = text.find('+', first + 1);
  if (first == std::string_view::npos || second == std::string_view::npos || !IsKeyName(text.substr(0, first))) {
    return std::nullopt;
  }
  const std::string bytes = FromBase64(text.substr(second + 1)).value_or("");
  if (bytes.size() != 1 + keyBytes || bytes.front() != ofEd25519) {
    return std::nullopt;
  }
  NoteKey key(std::string(text.substr(0, first)), bytes.substr(1));
  return key.Text() == text ? std::optional(std::move(key)) : std::nullopt;
}

std::string NoteKey::Text() const {
  std::string digits;
  for (const char byte : Id()) {
    AppendHex(digits, byte);
  }
  return name + '+' + digits + '+' + ToBase64(ofEd25519 + publicKey);
}

std::string NoteKey::Id() const {
  Sha256 sha;
  sha.Add(name + '\n' + ofEd25519 + publicKey);
  return sha.FinishBytes().substr(0, idBytes);
}

bool NoteKey::IsNamedBy(const NoteSignature& signature) const {
  return signature.name == name && signature.bytes.starts_with(Id());
}

bool NoteKey::Signed(std::string_view text, const NoteSignature& signature) const {
  const std::string_view bytes = std::string_view(signature.bytes).substr(std::min(idBytes, signature.bytes.size()));
  const std::unique_ptr<EVP_PKEY, Freed<&EVP_PKEY_free>> key(
      EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, BytesOf(publicKey), publicKey.size()));
  const Context context(EVP_MD_CTX_new());
  return IsNamedBy(signature) && bytes.size() == signatureBytes && key && context &&
         EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, key.get()) == 1 &&
         EVP_DigestVerify(context.get(), BytesOf(bytes), bytes.size(), BytesOf(text), text.size()) == 1;
}

SigningKey SigningKey::Read(const std::string& file, const std::function<std::string()>& passphrase) {
  std::string text = ReadSecretFile("--key", file);
  const std::unique_ptr<BIO, Freed<&BIO_free>> bytes(BIO_new_mem_buf(text.data(), static_cast<int>(text.size())));
  Passphrase asked{passphrase};
  Key key(bytes ? PEM_read_bio_PrivateKey(bytes.get(), nullptr, &Give, &asked) : nullptr, &EVP_PKEY_free);
  OPENSSL_cleanse(text.data(), text.size());
  ERR_clear_error();
  if (asked.failure) {
    std::rethrow_exception(asked.failure);
  }
  if (!key && asked.wasAsked) {
    throw Error("the key in file '" + file + "' cannot be decrypted with this passphrase");
  }
  if (!key || EVP_PKEY_get_base_id(key.get()) != EVP_PKEY_ED25519) {
    throw Error("file '" + file +
                "' has no private key of Ed25519; expected a file that openssl genpkey -algorithm ed25519 writes");
  }
  return SigningKey(std::move(key));
}

NoteKey SigningKey::PublicKey(const std::string& name) const {
  std::string bytes(keyBytes, '\0');
  std::size_t length = bytes.size();
  if (EVP_PKEY_get_raw_public_key(key.get(), BytesOf(bytes), &length) != 1 || length != keyBytes) {
    throw Error("OpenSSL cannot give the public key");
  }
  return {name, bytes};
}

NoteSignature SigningKey::Sign(const std::string& name, std::string_view text) const {
  std::string signature(signatureBytes, '\0');
  std::size_t length = signature.size();
  const Context context(EVP_MD_CTX_new());
  if (!context || EVP_DigestSignInit(context.get(), nullptr, nullptr, nullptr, key.get()) != 1 ||
      EVP_DigestSign(context.get(), BytesOf(signature), &length, BytesOf(text), text.size()) != 1) {
    throw Error("OpenSSL cannot sign");
  }
  return {name, PublicKey(name).Id() + signature.substr(0, length)};
}

}  // namespace Velora::Ts
