#include "serving/http/Access.h"

#include "serving/http/Answer.h"
#include "serving/http/LowerCase.h"

#include <cstddef>
#include <string_view>

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

std::string WithoutScheme(const std::string& origin) {
  for (const std::string_view scheme : {"http://", "https://"}) {
    if (origin.starts_with(scheme)) {
      return origin.substr(scheme.size());
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
  if (!head.origin.empty() && !IsOurs(WithoutScheme(head.origin))) {
    throw Refusal(403, "the request comes from a page of another host");
  }
  // A link elsewhere may lead here.
  const bool isOpened = head.fetchMode == "navigate" && head.fetchDestination == "document";
  if ((head.fetchSite == "cross-site" || head.fetchSite == "same-site") && !isOpened) {
    throw Refusal(403, "the request comes from a page of another host");
  }
}

}  // namespace Velora::Http
