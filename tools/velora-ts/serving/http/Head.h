#pragma once

#include <string>
#include <string_view>

namespace Velora::Http {

/// What matters of the head of a request: its request line and its headers.
struct Head {
  std::string method, target;
  bool isOld = false;      ///< HTTP/1.0, which knows no answers in pieces.
  bool keepsOpen = false;  ///< Whether the client wants to send another request.
  bool takesGzip = false;
  std::string host, origin;
  std::string fetchSite, fetchMode, fetchDestination;  ///< The Sec-Fetch headers; empty from other than browsers.
  std::string ifNoneMatch;
};

/// Reads a whole head of a request without a body.
/// @throws Refusal when it is not one: of HTTP/1.1 or 1.0, within the limits, and as the standard writes it.
Head ReadHead(std::string_view text);

}  // namespace Velora::Http
