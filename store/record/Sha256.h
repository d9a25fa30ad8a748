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

 private:
  void Begin();

  std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context{EVP_MD_CTX_new(), &EVP_MD_CTX_free};
};

}  // namespace Velora::Store
