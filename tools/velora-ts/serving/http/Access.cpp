#include "serving/http/Access.h"

#include "serving/http/Answer.h"
#include "serving/http/LowerCase.h"

#include <cstddef>
#include <string_view>
#include <utility>

namespace Velora::Http {

namespace {

/// The name in "NAME:PORT" or "NAME"; empty if it is neither.
std::string NameIn(const std::string& host) {
  const std::size_t end = host.starts_with('[') ? host.find(']') : host.find(':');
  const bool isBracketed = host.starts_with('[') && end != std::string::npos;
  const std::string rest = end == std::string::npos ? "" : host.substr(isBracketed ? end + 1 : end);
  const bool isPort = rest.empty() || (rest.size() > 1 && rest.size() < 7 && rest[0] == ':' &&
                                       rest.find_first_not_of("0123456789", 1) == std::string::npos);
  return isPort ? LowerCase(isBracketed ? host.substr(1, end - 1) : host.substr(0, end)) : "";
}

// Nobody can point an address elsewhere, as he can a name.
bool IsNumericAddress(const std::string& name) {
  return !name.empty() &&
         (name.find(':') != std::string::npos || name.find_first_not_of("0123456789.") == std::string::npos);
}

/// The port that a host ends with; empty if there is none.
std::string PortIn(const std::string& host) {
  const std::size_t colon = host.rfind(':');
  return colon == std::string::npos || host.find(']', colon) != std::string::npos ? "" : host.substr(colon + 1);
}

/// The host of an origin, with its port; empty if it has none.
std::string HostIn(const std::string& origin) {
  for (const auto& [scheme, port] : {std::pair("http://", ":80"), std::pair("https://", ":443")}) {
    if (origin.starts_with(scheme)) {
      const std::string host = origin.substr(std::string_view(scheme).size());
      return host + (PortIn(host).empty() ? port : "");
    }
  }
  return "";
}

}  // namespace

Access::Access(const Address& listens, const std::vector<std::string>& further)
    : names{"localhost", "127.0.0.1", "::1", LowerCase(listens.host)},
      takesAnyAddress(listens.host == "0.0.0.0" || listens.host == "::") {
  for (const std::string& name : further) {
    names.insert(LowerCase(name));
  }
}

bool Access::IsOurs(const std::string& host) const {
  const std::string name = NameIn(host);
  return names.contains(name) || (takesAnyAddress && IsNumericAddress(name));
}

void Access::Check(const Head& head) const {
  if (!IsOurs(head.host)) {
    throw Refusal(421, "the header Host names another host; --host NAME allows the name of a proxy");
  }
  const std::string page = HostIn(head.origin);
  const std::string port = PortIn(head.host);  // which a proxy can leave out
  if (!head.origin.empty() && (!IsOurs(page) || (!port.empty() && PortIn(page) != port))) {
    throw Refusal(403, "the request comes from a page of another host");
  }
  // A link elsewhere may lead here.
  const bool isOpened = head.fetchMode == "navigate" && head.fetchDestination == "document";
  if ((head.fetchSite == "cross-site" || head.fetchSite == "same-site") && !isOpened) {
    throw Refusal(403, "the request comes from a page of another host");
  }
}

}  // namespace Velora::Http
