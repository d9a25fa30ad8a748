#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Velora::Ts {

/// A signature as `ssh-keygen -Y sign` writes it, over a text.
struct SshSignature {
  std::string text;       ///< As ssh-keygen writes it.
  std::string keyType;    ///< Such as "ssh-ed25519".
  std::string publicKey;  ///< In the binary form whose Base64 encoding stands in .pub files.
  std::string space;      ///< The namespace (-n) for which it was made.
  std::string hash;       ///< "sha512" or "sha256".
  std::string algorithm;  ///< Of the signature, such as "rsa-sha2-512".
  std::string bytes;
};

/// The namespace of signatures of seals.
inline constexpr const char* sshNamespace = "velora-ts";

/// The signature that a text is, to the byte as ssh-keygen writes it; nothing for any other text.
std::optional<SshSignature> SshSignatureIn(std::string_view text);

/// The signature in a file. Line breaks can be those of another system, and can be more or fewer at the end.
/// @throws Error, naming the file, when it has none, or has one by a key of a type that is not supported.
SshSignature ReadSshSignature(const std::string& file);

/// Whether a signature is one of this text for `sshNamespace`, with a key that OpenSSH makes in a file: Ed25519, RSA
/// or ECDSA.
bool Signed(std::string_view text, const SshSignature& signature);

}  // namespace Velora::Ts
