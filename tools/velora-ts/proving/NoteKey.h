#pragma once

#include "proving/SignedNote.h"

#include <openssl/evp.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace Velora::Ts {

/// The public key of somebody who signs notes: "NAME+ID+KEY", where ID has eight hexadecimal digits and KEY is Base64
/// of the byte 1 and the 32 bytes of an Ed25519 key.
class NoteKey {
 public:
  /// @param publicKey 32 bytes.
  NoteKey(std::string name, std::string publicKey);
  /// The key that a text is; nothing for any other text, also if the ID is not that of the key.
  static std::optional<NoteKey> In(std::string_view text);

  const std::string& Name() const { return name; }
  /// 32 bytes.
  const std::string& PublicKey() const { return publicKey; }
  std::string Text() const;
  /// Whether a signature names this key.
  bool IsNamedBy(const NoteSignature& signature) const;
  /// Whether this key signed a text with the signature.
  bool Signed(std::string_view text, const NoteSignature& signature) const;
  /// The four bytes that identify the key.
  std::string Id() const;

 private:
  std::string name;
  std::string publicKey;
};

/// The private key of somebody who signs. It is wiped from memory at its end.
class SigningKey {
 public:
  /// Reads a key as `openssl genpkey -algorithm ed25519` writes it.
  /// @param passphrase is asked only if the key is encrypted.
  /// @throws Error when the file has no such key, or when the passphrase is wrong. It never repeats anything of either.
  static SigningKey Read(const std::string& file, const std::function<std::string()>& passphrase);

  NoteKey PublicKey(const std::string& name) const;
  NoteSignature Sign(const std::string& name, std::string_view text) const;

 private:
  using Key = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;
  explicit SigningKey(Key key) : key(std::move(key)) {}

  Key key;
};

}  // namespace Velora::Ts
