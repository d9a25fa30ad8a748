#pragma once

#include "store/settings/XmlFault.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace Velora::Store {

/// The name of elements and the attributes that they may have.
struct XmlForm {
  std::string element;
  std::vector<std::string> attributes;
};
/// The elements that may be at one depth.
using XmlLevel = std::vector<XmlForm>;

struct XmlElement {
  std::string name;
  std::map<std::string, std::string> attributes;
  std::size_t offset = 0;  ///< Of its start, in bytes.

  /// The value of an attribute; empty if it is missing.
  std::string Value(const std::string& attribute) const;
};

/// The elements of an XML text in UTF-8, in their order.
/// @param levels the first level has the form of the single root element, the second that of the elements in it, and so
/// on.
/// @throws XmlFault for anything else, also for text.
std::vector<XmlElement> ParseXml(const std::string& content, const std::vector<XmlLevel>& levels);

}  // namespace Velora::Store
