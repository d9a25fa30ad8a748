#pragma once

#include "store/settings/XmlFault.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace Velora::Store {

/// The elements that may stand at one depth: all have this name, and no attributes but these.
struct XmlLevel {
  std::string element;
  std::vector<std::string> attributes;
};

struct XmlElement {
  std::string name;
  std::map<std::string, std::string> attributes;
  std::size_t offset = 0;  ///< of its start

  /// The value of an attribute; empty when it is not there.
  std::string Value(const std::string& attribute) const;
};

/// The elements of an XML text in UTF-8, in their order.
/// @param levels one root element of the first, in it elements of the second, and so on; no text.
/// @throws XmlFault for everything else.
std::vector<XmlElement> ParseXml(const std::string& content, const std::vector<XmlLevel>& levels);

}  // namespace Velora::Store
