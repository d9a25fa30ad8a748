#pragma once

#include <openssl/evp.h>

#include <memory>
#include <string>
#include <string_view>

namespace Velora::Store {

/// SHA-256 of what is added to it, piece by piece.
class Sha256 {
 public:
  Sha256();

  void Add(std::string_view piece);
  /// In 64 hexadecimal digits. Begins anew afterwards.
  std::string Finish();

 private:
  void Begin();

  std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context{EVP_MD_CTX_new(), &EVP_MD_CTX_free};
};

}  // namespace Velora::Store
