#include "serving/http/Address.h"

#include "store/Error.h"

#include <charconv>
#include <cstddef>
#include <system_error>

namespace Velora::Http {

std::string Address::InWords() const {
  const bool isVersion6 = host.find(':') != std::string::npos;
  return (isVersion6 ? "[" + host + "]" : host) + ":" + std::to_string(port);
}

bool Address::IsLoopback() const { return host == "localhost" || host == "::1" || host.starts_with("127."); }

Address AddressOf(const std::string& text) {
  const std::size_t colon = text.rfind(':');
  Address address;
  address.host = text.substr(0, colon);
  if (address.host.starts_with('[') && address.host.ends_with(']')) {
    address.host = address.host.substr(1, address.host.size() - 2);
  } else if (address.host.find(':') != std::string::npos) {
    address.host.clear();
  }
  const std::string port = colon == std::string::npos ? "" : text.substr(colon + 1);
  const auto [end, error] = std::from_chars(port.data(), port.data() + port.size(), address.port);
  const bool isNumber = error == std::errc() && end == port.data() + port.size();
  if (address.host.empty() || !isNumber || address.port < 0 || address.port > 65535) {
    throw Store::Error("'" + text + "' is no address to listen at; expected ADDRESS:PORT, such as 127.0.0.1:8437");
  }
  return address;
}

}  // namespace Velora::Http
