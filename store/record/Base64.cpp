#include "store/record/Base64.h"

#include <openssl/evp.h>

namespace Velora::Store {

namespace {

const unsigned char* BytesOf(std::string_view text) { return reinterpret_cast<const unsigned char*>(text.data()); }

unsigned char* BytesOf(std::string& text) { return reinterpret_cast<unsigned char*>(text.data()); }

}  // namespace

std::string ToBase64(std::string_view bytes) {
  std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');  // and the zero byte that OpenSSL ends it with
  text.resize(static_cast<std::size_t>(EVP_EncodeBlock(BytesOf(text), BytesOf(bytes), static_cast<int>(bytes.size()))));
  return text;
}

std::optional<std::string> FromBase64(std::string_view text) {
  std::string bytes(text.size() / 4 * 3, '\0');
  const int length = EVP_DecodeBlock(BytesOf(bytes), BytesOf(text), static_cast<int>(text.size()));
  const std::size_t end = text.find_last_not_of('=') + 1;
  if (length < 0 || text.size() - end > 2) {
    return std::nullopt;
  }
  bytes.resize(static_cast<std::size_t>(length) - (text.size() - end));
  // OpenSSL ignores white space at both ends, and bits that belong to no byte.
  return ToBase64(bytes) == text ? std::optional(bytes) : std::nullopt;
}

}  // namespace Velora::Store
