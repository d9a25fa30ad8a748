#pragma once

#include <openssl/crypto.h>

#include <memory>
#include <string>
#include <string_view>

namespace Velora::Ts {

/// Frees an object of OpenSSL with its function.
template <auto Free>
struct Freed {
  template <typename Object>
  void operator()(Object* object) const {
    Free(object);
  }
};

/// The form in which OpenSSL takes bytes.
inline const unsigned char* BytesOf(std::string_view text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}
inline unsigned char* BytesOf(std::string& text) { return reinterpret_cast<unsigned char*>(text.data()); }

/// Takes what OpenSSL wrote into memory of its own, and frees that.
/// @param length 0 or less if it could not write; then the text is empty.
inline std::string TakeBytes(unsigned char* bytes, int length) {
  const std::unique_ptr<unsigned char, Freed<[](unsigned char* taken) { OPENSSL_free(taken); }>> freed(bytes);
  return length > 0 ? std::string(reinterpret_cast<char*>(bytes), static_cast<std::size_t>(length)) : "";
}

}  // namespace Velora::Ts
