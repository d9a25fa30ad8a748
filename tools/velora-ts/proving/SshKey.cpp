#include "proving/SshKey.h"

#include "proving/OpenSsl.h"

#include "store/Error.h"

#include <openssl/bn.h>
#include <openssl/core_names.h>
#include <openssl/ec.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/param_build.h>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <utility>

namespace Velora::Ts {

namespace {

constexpr std::array<std::string_view, 5> supported = {"ssh-ed25519", "ssh-rsa", "ecdsa-sha2-nistp256",
                                                       "ecdsa-sha2-nistp384", "ecdsa-sha2-nistp521"};
constexpr std::size_t longestType = 64;

using Key = std::unique_ptr<EVP_PKEY, Freed<&EVP_PKEY_free>>;
using Number = std::unique_ptr<BIGNUM, Freed<&BN_free>>;
using Parameters = std::unique_ptr<OSSL_PARAM_BLD, Freed<&OSSL_PARAM_BLD_free>>;

Number NumberIn(std::string_view bytes) {
  return Number(BN_bin2bn(BytesOf(bytes), static_cast<int>(bytes.size()), nullptr));
}

Key Made(const char* type, OSSL_PARAM_BLD* from) {
  const std::unique_ptr<OSSL_PARAM, Freed<&OSSL_PARAM_free>> parameters(OSSL_PARAM_BLD_to_param(from));
  const std::unique_ptr<EVP_PKEY_CTX, Freed<&EVP_PKEY_CTX_free>> context(
      EVP_PKEY_CTX_new_from_name(nullptr, type, nullptr));
  EVP_PKEY* made = nullptr;
  if (parameters && context && EVP_PKEY_fromdata_init(context.get()) == 1) {
    EVP_PKEY_fromdata(context.get(), &made, EVP_PKEY_PUBLIC_KEY, parameters.get());
  }
  return Key(made);
}

Key RsaKey(SshReader& reader) {
  const Number exponent = NumberIn(reader.String()), modulus = NumberIn(reader.String());
  const Parameters parameters(OSSL_PARAM_BLD_new());
  if (!exponent || !modulus || !parameters ||
      OSSL_PARAM_BLD_push_BN(parameters.get(), OSSL_PKEY_PARAM_RSA_E, exponent.get()) != 1 ||
      OSSL_PARAM_BLD_push_BN(parameters.get(), OSSL_PKEY_PARAM_RSA_N, modulus.get()) != 1) {
    return nullptr;
  }
  return Made("RSA", parameters.get());
}

Key EcKey(SshReader& reader) {
  const std::string curve(reader.String());
  const std::string_view point = reader.String();
  const Parameters parameters(OSSL_PARAM_BLD_new());
  const std::string group = curve.starts_with("nistp") ? "P-" + curve.substr(5) : "";
  if (group.empty() || !parameters ||
      OSSL_PARAM_BLD_push_utf8_string(parameters.get(), OSSL_PKEY_PARAM_GROUP_NAME, group.c_str(), 0) != 1 ||
      OSSL_PARAM_BLD_push_octet_string(parameters.get(), OSSL_PKEY_PARAM_PUB_KEY, point.data(), point.size()) != 1) {
    return nullptr;
  }
  return Made("EC", parameters.get());
}

Key KeyIn(std::string_view bytes) {
  SshReader reader(bytes);
  const std::string_view type = reader.String();
  Key key;
  if (type == "ssh-ed25519") {
    const std::string_view raw = reader.String();
    key.reset(EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, BytesOf(raw), raw.size()));
  } else if (type == "ssh-rsa") {
    key = RsaKey(reader);
  } else if (type.starts_with("ecdsa-sha2-")) {
    key = EcKey(reader);
  }
  return reader.IsAtEnd() ? std::move(key) : nullptr;
}

/// Whether bytes are a positive number in the only form that SSH has for it (RFC 4251, 5).
bool IsShortest(std::string_view bytes) {
  const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(bytes[at]); };
  return !bytes.empty() && byte(0) < 0x80 && (byte(0) != 0 || (bytes.size() > 1 && byte(1) >= 0x80));
}

/// The signature of a curve in the form that OpenSSL takes.
std::string AsDer(std::string_view signature) {
  SshReader reader(signature);
  const std::string_view bytesOfR = reader.String(), bytesOfS = reader.String();
  if (!IsShortest(bytesOfR) || !IsShortest(bytesOfS)) {
    return "";
  }
  Number r = NumberIn(bytesOfR), s = NumberIn(bytesOfS);
  const std::unique_ptr<ECDSA_SIG, Freed<&ECDSA_SIG_free>> both(ECDSA_SIG_new());
  if (!reader.IsAtEnd() || !both || ECDSA_SIG_set0(both.get(), r.get(), s.get()) != 1) {
    return "";
  }
  static_cast<void>(r.release());
  static_cast<void>(s.release());
  unsigned char* der = nullptr;
  const int length = i2d_ECDSA_SIG(both.get(), &der);
  return TakeBytes(der, length);
}

/// The hash that an algorithm signs: nothing for one that is not known, a null pointer for one that hashes by itself.
std::optional<const EVP_MD*> HashOf(std::string_view algorithm) {
  if (algorithm == "ssh-ed25519") {
    return nullptr;
  }
  if (algorithm == "rsa-sha2-512" || algorithm == "ecdsa-sha2-nistp521") {
    return EVP_sha512();
  }
  if (algorithm == "ecdsa-sha2-nistp384") {
    return EVP_sha384();
  }
  if (algorithm == "rsa-sha2-256" || algorithm == "ecdsa-sha2-nistp256") {
    return EVP_sha256();
  }
  return std::nullopt;
}

/// Whether a key of this type signs by an algorithm.
bool Fits(std::string_view type, std::string_view algorithm) {
  return type == algorithm || (type == "ssh-rsa" && algorithm.starts_with("rsa-sha2-"));
}

}  // namespace

unsigned SshReader::Integer() {
  unsigned value = 0;
  isRight = isRight && rest.size() >= 4;
  for (std::size_t at = 0; isRight && at < 4; ++at) {
    value = value << 8U | static_cast<unsigned char>(rest[at]);
  }
  rest.remove_prefix(isRight ? 4 : 0);
  return value;
}

std::string_view SshReader::String() {
  const unsigned length = Integer();
  isRight = isRight && rest.size() >= length;
  const std::string_view text = isRight ? rest.substr(0, length) : std::string_view();
  rest.remove_prefix(text.size());
  return text;
}

void ExpectSupported(std::string_view keyType) {
  if (std::find(supported.begin(), supported.end(), keyType) == supported.end()) {
    throw Store::Error("a key of the type '" + std::string(keyType.substr(0, longestType)) +
                       "' is not supported; expected ssh-ed25519, ssh-rsa, or ecdsa-sha2- with nistp256, nistp384 or "
                       "nistp521");
  }
}

bool SshKeySigned(std::string_view key, std::string_view algorithm, std::string_view signature,
                  std::string_view message) {
  const Key signer = KeyIn(key);
  const std::optional<const EVP_MD*> hash = HashOf(algorithm);
  SshReader reader(signature);
  std::string bytes(reader.String());
  if (algorithm.starts_with("ecdsa-")) {
    bytes = AsDer(bytes);
  }
  const std::unique_ptr<EVP_MD_CTX, Freed<&EVP_MD_CTX_free>> context(EVP_MD_CTX_new());
  const bool isRight =
      signer && hash && reader.IsAtEnd() && Fits(SshReader(key).String(), algorithm) && context &&
      EVP_DigestVerifyInit(context.get(), nullptr, *hash, nullptr, signer.get()) == 1 &&
      EVP_DigestVerify(context.get(), BytesOf(bytes), bytes.size(), BytesOf(message), message.size()) == 1;
  ERR_clear_error();
  return isRight;
}

}  // namespace Velora::Ts
