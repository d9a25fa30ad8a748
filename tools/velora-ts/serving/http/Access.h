#pragma once

#include "serving/http/Address.h"
#include "serving/http/Head.h"

#include <set>
#include <string>
#include <vector>

namespace Velora::Http {

/// Who may ask. A browser lets a page from elsewhere send requests here, also under a name that its owner points to
/// this computer; such a page must learn nothing.
class Access {
 public:
  /// @param names further names under which the server is reached, such as that of a proxy.
  Access(const Address& listens, const std::vector<std::string>& names);

  /// @throws Refusal with status 421 when a request names another host, 403 when it comes from a page of another.
  void Check(const Head& head) const;

 private:
  bool IsOurs(const std::string& host) const;

  std::set<std::string> names;
  bool takesAnyAddress;
};

}  // namespace Velora::Http
