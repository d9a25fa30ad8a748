#include "proving/TimeStamp.h"

#include "proving/OpenSsl.h"

#include "store/record/Sha256.h"
#include "store/settings/WholeFile.h"

#include "store/Error.h"

#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/ts.h>
#include <openssl/x509.h>

#include <array>
#include <chrono>
#include <ctime>
#include <memory>
#include <utility>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr std::uintmax_t largestCertificates = 1 << 24;

using Answer = std::unique_ptr<TS_RESP, Freed<&TS_RESP_free>>;
using Token = std::unique_ptr<PKCS7, Freed<&PKCS7_free>>;
using Info = std::unique_ptr<TS_TST_INFO, Freed<&TS_TST_INFO_free>>;
using Certificates = std::unique_ptr<X509_STORE, Freed<&X509_STORE_free>>;

std::string DerOf(PKCS7* token) {
  unsigned char* der = nullptr;
  const int length = i2d_PKCS7(token, &der);
  return TakeBytes(der, length);
}

bool HasNoParameters(const X509_ALGOR* algorithm) {
  int type = V_ASN1_UNDEF;
  X509_ALGOR_get0(nullptr, &type, nullptr, algorithm);
  return type == V_ASN1_UNDEF || type == V_ASN1_NULL;
}

/// Makes one of the two forms in which an algorithm can have no parameters the only one.
/// @param form V_ASN1_NULL or V_ASN1_UNDEF.
void Unify(X509_ALGOR* algorithm, int form) {
  if (HasNoParameters(algorithm)) {
    X509_ALGOR_set0(algorithm, OBJ_dup(algorithm->algorithm), form, nullptr);
  }
}

bool IsOfRsa(const X509_ALGOR* algorithm) {
  const int name = OBJ_obj2nid(algorithm->algorithm);
  int digest = NID_undef, key = NID_undef;
  return name == NID_rsaEncryption || (OBJ_find_sigid_algs(name, &digest, &key) == 1 && key == NID_rsaEncryption);
}

/// Removes what nobody signed and nobody needs: all certificates but that of the one signer, lists of revoked ones, and
/// remarks. @return whether there is one signer.
bool KeepSigner(PKCS7* token) {
  if (PKCS7_type_is_signed(token) == 0 || sk_PKCS7_SIGNER_INFO_num(PKCS7_get_signer_info(token)) != 1) {
    return false;
  }
  PKCS7_SIGNER_INFO* const info = sk_PKCS7_SIGNER_INFO_value(PKCS7_get_signer_info(token), 0);
  sk_X509_ATTRIBUTE_pop_free(std::exchange(info->unauth_attr, nullptr), &X509_ATTRIBUTE_free);
  sk_X509_CRL_pop_free(std::exchange(token->d.sign->crl, nullptr), &X509_CRL_free);
  Unify(info->digest_alg, V_ASN1_NULL);
  Unify(info->digest_enc_alg, IsOfRsa(info->digest_enc_alg) ? V_ASN1_NULL : V_ASN1_UNDEF);
  for (int at = 0; at < sk_X509_ALGOR_num(token->d.sign->md_algs); ++at) {
    Unify(sk_X509_ALGOR_value(token->d.sign->md_algs, at), V_ASN1_NULL);
  }
  const PKCS7_ISSUER_AND_SERIAL* const signer = info->issuer_and_serial;
  STACK_OF(X509)* const certificates = token->d.sign->cert;
  for (int at = sk_X509_num(certificates) - 1; at >= 0; --at) {
    X509* const certificate = sk_X509_value(certificates, at);
    if (X509_NAME_cmp(X509_get_issuer_name(certificate), signer->issuer) != 0 ||
        ASN1_INTEGER_cmp(X509_get0_serialNumber(certificate), signer->serial) != 0) {
      X509_free(sk_X509_delete(certificates, at));
    }
  }
  return sk_X509_num(certificates) == 1;
}

/// Whether what nobody signed of a token says the same as what was signed. OpenSSL believes it, or does not read it.
bool IsConsistent(PKCS7* token) {
  const PKCS7_SIGNER_INFO* const signer = sk_PKCS7_SIGNER_INFO_value(PKCS7_get_signer_info(token), 0);
  const STACK_OF(X509_ALGOR)* const digests = token->d.sign->md_algs;
  EVP_PKEY* const key = X509_get0_pubkey(sk_X509_value(token->d.sign->cert, 0));
  const int keyType = key ? EVP_PKEY_get_base_id(key) : NID_undef;
  const int signedWith = OBJ_obj2nid(signer->digest_enc_alg->algorithm);
  int digest = NID_undef, type = NID_undef;
  const bool isOfKey = OBJ_find_sigid_algs(signedWith, &digest, &type) == 1 && digest != NID_undef
                           ? type == keyType && digest == OBJ_obj2nid(signer->digest_alg->algorithm)
                           : signedWith == keyType;
  return isOfKey && ASN1_INTEGER_get(token->d.sign->version) == 3 && ASN1_INTEGER_get(signer->version) == 1 &&
         sk_X509_ALGOR_num(digests) == 1 && X509_ALGOR_cmp(sk_X509_ALGOR_value(digests, 0), signer->digest_alg) == 0 &&
         HasNoParameters(signer->digest_alg) && HasNoParameters(signer->digest_enc_alg);
}

/// The token that bytes are; nothing if they are not those that TokenIn() gives.
Token Read(std::string_view bytes) {
  const auto* at = reinterpret_cast<const unsigned char*>(bytes.data());
  Token token(d2i_PKCS7(nullptr, &at, static_cast<long>(bytes.size())));
  const bool isWhole = token && KeepSigner(token.get()) && DerOf(token.get()) == bytes && IsConsistent(token.get());
  ERR_clear_error();
  return isWhole ? std::move(token) : nullptr;
}

Info InfoOf(PKCS7* token) { return Info(PKCS7_to_TS_TST_INFO(token)); }

std::optional<std::tm> TimeOf(const TS_TST_INFO* info) {
  std::tm time{};
  return ASN1_TIME_to_tm(TS_TST_INFO_get_time(info), &time) == 1 ? std::optional(time) : std::nullopt;
}

std::time_t SecondsOf(const std::tm& time) {
  const std::chrono::year_month_day date{std::chrono::year(time.tm_year + 1900),
                                         std::chrono::month(static_cast<unsigned>(time.tm_mon + 1)),
                                         std::chrono::day(static_cast<unsigned>(time.tm_mday))};
  const std::chrono::sys_seconds moment = std::chrono::sys_days(date) + std::chrono::hours(time.tm_hour) +
                                          std::chrono::minutes(time.tm_min) + std::chrono::seconds(time.tm_sec);
  return moment.time_since_epoch().count();  // to_time_t() counts in nanoseconds, which end in the year 2262
}

/// The fraction of a second behind a time, with its point, cut or filled to microseconds.
std::string FractionOf(const TS_TST_INFO* info) {
  const ASN1_GENERALIZEDTIME* const time = TS_TST_INFO_get_time(info);
  std::string text(reinterpret_cast<const char*>(ASN1_STRING_get0_data(time)),
                   static_cast<std::size_t>(ASN1_STRING_length(time)));
  const std::size_t point = text.find('.');
  std::string digits = point == std::string::npos ? "" : text.substr(point + 1, text.find('Z') - point - 1);
  digits.resize(6, '0');
  return '.' + digits;
}

/// Called by OpenSSL for the passphrase of an encrypted certificate: there is no such thing.
int AskNobody(char* /*to*/, int /*size*/, int /*isToWrite*/, void* /*from*/) { return -1; }

Certificates ReadCertificates(const std::string& file) {
  Certificates certificates(X509_STORE_new());
  const std::string text = ReadWholeFile(file, largestCertificates);
  const std::unique_ptr<BIO, Freed<&BIO_free>> bytes(BIO_new_mem_buf(text.data(), static_cast<int>(text.size())));
  int count = 0;
  while (bytes && certificates) {
    const std::unique_ptr<X509, Freed<&X509_free>> certificate(
        PEM_read_bio_X509(bytes.get(), nullptr, &AskNobody, nullptr));
    if (!certificate) {
      break;
    }
    ++count;
    X509_STORE_add_cert(certificates.get(), certificate.get());
  }
  const bool isAtEnd = ERR_GET_REASON(ERR_peek_last_error()) == PEM_R_NO_START_LINE;
  ERR_clear_error();
  if (!isAtEnd) {
    throw Error("certificate " + std::to_string(count + 1) + " in file '" + file +
                "' cannot be read; expected certificates of time-stamping authorities in PEM");
  }
  if (count == 0) {
    throw Error("file '" + file + "' has no certificate; expected those of time-stamping authorities in PEM");
  }
  return certificates;
}

std::string LastReason() {
  std::string reason = "OpenSSL does not say why";
  while (const unsigned long error = ERR_get_error()) {
    if (const char* const words = ERR_reason_error_string(error)) {
      reason = words;
    }
  }
  return reason;
}

/// Called by OpenSSL for each error in a chain of certificates. That nobody who is known issued one of them ends
/// nothing: what else is wrong with it shall be found.
int GoOnWithoutIssuer(int isRight, X509_STORE_CTX* chain) {
  switch (isRight == 1 ? X509_V_OK : X509_STORE_CTX_get_error(chain)) {
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY:
    case X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE:
    case X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT:
    case X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN:
      *static_cast<bool*>(X509_STORE_get_ex_data(X509_STORE_CTX_get0_store(chain), 0)) = false;
      return 1;
    default:
      return isRight;
  }
}

/// The name of who signed a token, in its certificate.
std::string SubjectOf(PKCS7* token) {
  constexpr unsigned long form = XN_FLAG_RFC2253 & ~static_cast<unsigned long>(ASN1_STRFLGS_ESC_MSB);
  const std::unique_ptr<BIO, Freed<&BIO_free>> text(BIO_new(BIO_s_mem()));
  std::array<char, 200> name{};  // the beginning is enough
  const X509* const signer = sk_X509_value(token->d.sign->cert, 0);
  const bool isThere = text && X509_NAME_print_ex(text.get(), X509_get_subject_name(signer), 0, form) > 0;
  const int length = isThere ? BIO_read(text.get(), name.data(), static_cast<int>(name.size())) : 0;
  return length > 0 ? std::string(name.data(), static_cast<std::size_t>(length)) : "somebody without a name";
}

}  // namespace

std::string TimeStampQuery(std::string_view text) {
  const std::unique_ptr<TS_REQ, Freed<&TS_REQ_free>> query(TS_REQ_new());
  const std::unique_ptr<TS_MSG_IMPRINT, Freed<&TS_MSG_IMPRINT_free>> imprint(TS_MSG_IMPRINT_new());
  const std::unique_ptr<X509_ALGOR, Freed<&X509_ALGOR_free>> algorithm(X509_ALGOR_new());
  std::string hash = Sha256Of(text);
  unsigned char* der = nullptr;
  int length = 0;
  if (query && imprint && algorithm &&
      X509_ALGOR_set0(algorithm.get(), OBJ_nid2obj(NID_sha256), V_ASN1_NULL, nullptr) == 1 &&
      TS_MSG_IMPRINT_set_algo(imprint.get(), algorithm.get()) == 1 &&
      TS_MSG_IMPRINT_set_msg(imprint.get(), reinterpret_cast<unsigned char*>(hash.data()),
                             static_cast<int>(hash.size())) == 1 &&
      TS_REQ_set_version(query.get(), 1) == 1 && TS_REQ_set_msg_imprint(query.get(), imprint.get()) == 1 &&
      TS_REQ_set_cert_req(query.get(), 1) == 1) {
    length = i2d_TS_REQ(query.get(), &der);
  }
  std::string bytes = TakeBytes(der, length);
  if (bytes.empty()) {
    throw Error("OpenSSL cannot make a time stamp query");
  }
  return bytes;
}

std::string TokenIn(std::string_view bytes) {
  const auto* at = reinterpret_cast<const unsigned char*>(bytes.data());
  const Answer answer(d2i_TS_RESP(nullptr, &at, static_cast<long>(bytes.size())));
  PKCS7* const token = answer ? TS_RESP_get_token(answer.get()) : nullptr;
  const bool hasSigner = token && KeepSigner(token);
  ERR_clear_error();
  return hasSigner ? DerOf(token) : "";
}

bool IsSigned(std::string_view bytes) {
  const Token token = Read(bytes);
  const bool isSigned = token && PKCS7_verify(token.get(), nullptr, nullptr, nullptr, nullptr, PKCS7_NOVERIFY) == 1;
  ERR_clear_error();
  return isSigned;
}

std::optional<TimeStamp> TimeStampIn(std::string_view bytes) {
  const Token token = Read(bytes);
  const Info info = token ? InfoOf(token.get()) : nullptr;
  TS_MSG_IMPRINT* const imprint = info ? TS_TST_INFO_get_msg_imprint(info.get()) : nullptr;
  if (!imprint || OBJ_obj2nid(TS_MSG_IMPRINT_get_algo(imprint)->algorithm) != NID_sha256) {
    return std::nullopt;
  }
  const std::optional<std::tm> time = TimeOf(info.get());
  std::array<char, 32> text{};
  if (!time || std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &*time) == 0) {
    return std::nullopt;
  }
  const ASN1_OCTET_STRING* const hash = TS_MSG_IMPRINT_get_msg(imprint);
  return TimeStamp{
      text.data() + FractionOf(info.get()) + 'Z',
      {reinterpret_cast<const char*>(ASN1_STRING_get0_data(hash)), static_cast<std::size_t>(ASN1_STRING_length(hash))}};
}

Authorities::Authorities(std::string file) : file(std::move(file)) { static_cast<void>(ReadCertificates(this->file)); }

Verdict Authorities::On(std::string_view bytes, std::string_view text) const {
  const Token token = Read(bytes);
  const Info info = token ? InfoOf(token.get()) : nullptr;
  const std::optional<std::tm> time = info ? TimeOf(info.get()) : std::nullopt;
  if (!time) {
    return {"it is no time stamp", ""};
  }
  Certificates certificates = ReadCertificates(file);
  // Certificates end; what one of them says of its own time stays true.
  X509_VERIFY_PARAM_set_time(X509_STORE_get0_param(certificates.get()), SecondsOf(*time));
  bool isKnown = true;
  X509_STORE_set_ex_data(certificates.get(), 0, &isKnown);
  X509_STORE_set_verify_cb(certificates.get(), &GoOnWithoutIssuer);
  const std::unique_ptr<TS_VERIFY_CTX, Freed<&TS_VERIFY_CTX_free>> context(TS_VERIFY_CTX_new());
  const std::string hash = Sha256Of(text);
  auto* const imprint = static_cast<unsigned char*>(OPENSSL_malloc(hash.size()));
  if (!context || !imprint) {
    throw Error("there is not enough memory to check a time stamp");
  }
  hash.copy(reinterpret_cast<char*>(imprint), hash.size());
  TS_VERIFY_CTX_set_flags(context.get(), TS_VFY_VERSION | TS_VFY_SIGNER | TS_VFY_SIGNATURE | TS_VFY_IMPRINT);
  TS_VERIFY_CTX_set_imprint(context.get(), imprint, static_cast<long>(hash.size()));  // takes it
  TS_VERIFY_CTX_set_store(context.get(), certificates.release());                     // takes them
  const bool isRight = TS_RESP_verify_token(context.get(), token.get()) == 1;
  Verdict verdict{isRight ? "" : LastReason(), isRight && !isKnown ? SubjectOf(token.get()) : ""};
  ERR_clear_error();
  return verdict;
}

}  // namespace Velora::Ts
