#pragma once

#include "store/settings/XmlParser.h"

#include <string>
#include <vector>

namespace Velora::Store {

/// An XML file of at most 64 MiB in which every element and attribute must be known and stand where it may. What is
/// wrong raises a Error that names file and line.
class XmlFile {
 public:
  /// @param levels what may stand in it, from the root on.
  /// @throws Error when the file cannot be read, is too large, not well-formed, or holds something else.
  XmlFile(const std::string& path, const std::vector<XmlLevel>& levels);

  /// All of them in their order, the root first.
  const std::vector<XmlElement>& Elements() const { return elements; }

  /// The value of an attribute that must be there and not be empty.
  std::string Required(const XmlElement& element, const std::string& name) const;

  /// Raises a Error: "file 'PATH', line N: " and the text.
  [[noreturn]] void Fail(const XmlElement& at, const std::string& text) const;

 private:
  [[noreturn]] void FailAtOffset(std::size_t offset, const std::string& text) const;

  std::string path;
  std::string content;  // lines are counted in it
  std::vector<XmlElement> elements;
};

}  // namespace Velora::Store
