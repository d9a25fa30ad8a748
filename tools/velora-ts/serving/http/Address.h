#pragma once

#include <string>

namespace Velora::Http {

/// Where a server listens.
struct Address {
  std::string host;
  int port = 0;  ///< 0 for any free port.

  /// As it stands in the address of a page: "127.0.0.1:8437" or "[::1]:8437".
  std::string InWords() const;
  /// Whether only programs on this computer reach it.
  bool IsLoopback() const;
};

/// Reads "ADDRESS:PORT", such as "127.0.0.1:8437", "[::1]:8437" or "localhost:0".
/// @throws Error
Address AddressOf(const std::string& text);

}  // namespace Velora::Http
