#include "page/writer/Base64.h"

#include <openssl/evp.h>

#include <vector>

namespace Velora::Page {

std::string Base64(std::string_view bytes) {
  const std::vector<unsigned char> plain(bytes.begin(), bytes.end());
  std::vector<unsigned char> text((plain.size() + 2) / 3 * 4 + 1);  // and the zero byte that OpenSSL ends it with
  const int length = EVP_EncodeBlock(text.data(), plain.data(), static_cast<int>(plain.size()));
  return {text.begin(), text.begin() + length};
}

}  // namespace Velora::Page
