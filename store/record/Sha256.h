#pragma once

#include <openssl/evp.h>

#include <memory>
#include <string>
#include <string_view>

namespace Velora::Store {

/// The SHA-256 hash of bytes that are added piece by piece.
class Sha256 {
 public:
  Sha256();

  void Add(std::string_view piece);
  /// The hash in 64 hexadecimal digits. Afterwards, the object is as new.
  std::string Finish();
  /// The hash as 32 bytes. Afterwards, the object is as new.
  std::string FinishBytes();

 private:
  void Begin();

  std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context{EVP_MD_CTX_new(), &EVP_MD_CTX_free};
};

/// The hash of bytes, as 32 bytes.
std::string Sha256Of(std::string_view bytes);

}  // namespace Velora::Store
