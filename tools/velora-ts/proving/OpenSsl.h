#pragma once

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

}  // namespace Velora::Ts
