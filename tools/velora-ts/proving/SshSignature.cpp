#include "proving/SshSignature.h"

#include "proving/SshKey.h"
#include "store/record/Base64.h"
#include "store/settings/WholeFile.h"

#include "store/Error.h"

#include <openssl/evp.h>

#include <memory>
#include <utility>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr std::string_view magic = "SSHSIG";
constexpr std::uintmax_t largestSignature = 1 << 20;
constexpr std::size_t columns = 70;  // of the Base64 of ssh-keygen
constexpr std::string_view begin = "-----BEGIN SSH SIGNATURE-----", end = "-----END SSH SIGNATURE-----";

void AppendString(std::string& to, std::string_view text) {
  for (int shift = 24; shift >= 0; shift -= 8) {
    to += static_cast<char>(text.size() >> static_cast<unsigned>(shift) & 0xffU);
  }
  to += text;
}

std::string Digest(std::string_view text, const std::string& hash) {
  std::string digest(EVP_MAX_MD_SIZE, '\0');
  unsigned length = 0;
  const EVP_MD* const kind = hash == "sha512" ? EVP_sha512() : EVP_sha256();
  const int done =
      EVP_Digest(text.data(), text.size(), reinterpret_cast<unsigned char*>(digest.data()), &length, kind, nullptr);
  return done == 1 ? digest.substr(0, length) : std::string();
}

std::string Armoured(const std::string& blob) {
  const std::string encoded = ToBase64(blob);
  std::string text = std::string(begin) + '\n';
  for (std::size_t at = 0; at < encoded.size(); at += columns) {
    text += encoded.substr(at, columns) + '\n';
  }
  return text + std::string(end) + '\n';
}

/// The bytes that a text has between its first and its last line; nothing for a text without these lines.
std::optional<std::string> BlobIn(std::string_view text) {
  const std::size_t last = text.find(end);
  if (!text.starts_with(begin) || last == std::string_view::npos ||
      text.find_first_not_of("\r\n", last + end.size()) != std::string_view::npos) {
    return std::nullopt;
  }
  std::string encoded(text.substr(begin.size(), last - begin.size()));
  std::erase_if(encoded, [](char letter) { return letter == '\n' || letter == '\r'; });
  return FromBase64(encoded);
}

/// The signature that a text is, whatever its line breaks are.
std::optional<SshSignature> SignatureWithAnyBreaks(std::string_view text) {
  const std::optional<std::string> blob = BlobIn(text);
  if (!blob || !blob->starts_with(magic)) {
    return std::nullopt;
  }
  SshReader reader(std::string_view(*blob).substr(magic.size()));
  SshSignature signature;
  signature.text = Armoured(*blob);
  const bool isFirstVersion = reader.Integer() == 1;
  signature.publicKey = reader.String();
  signature.space = reader.String();
  const bool hasReserved = !reader.String().empty();
  signature.hash = reader.String();
  SshReader inner(reader.String());
  signature.keyType = SshReader(signature.publicKey).String();
  signature.algorithm = inner.String();
  signature.bytes = inner.Rest();
  const bool right = isFirstVersion && !hasReserved && reader.IsAtEnd() && inner.IsRight() &&
                     (signature.hash == "sha512" || signature.hash == "sha256");
  return right ? std::optional(std::move(signature)) : std::nullopt;
}

}  // namespace

std::optional<SshSignature> SshSignatureIn(std::string_view text) {
  std::optional<SshSignature> signature = SignatureWithAnyBreaks(text);
  return signature && signature->text == text ? std::move(signature) : std::nullopt;
}

SshSignature ReadSshSignature(const std::string& file) {
  std::optional<SshSignature> signature = SignatureWithAnyBreaks(ReadWholeFile(file, largestSignature));
  if (!signature) {
    throw Error("file '" + file + "' is no signature; expected what ssh-keygen -Y sign writes");
  }
  try {
    ExpectSupported(signature->keyType);
  } catch (const Error& error) {
    throw Error("file '" + file + "': " + error.what());
  }
  return *std::move(signature);
}

bool Signed(std::string_view text, const SshSignature& signature) {
  std::string message(magic);
  AppendString(message, signature.space);
  AppendString(message, "");
  AppendString(message, signature.hash);
  AppendString(message, Digest(text, signature.hash));
  return signature.space == sshNamespace &&
         SshKeySigned(signature.publicKey, signature.algorithm, signature.bytes, message);
}

}  // namespace Velora::Ts
