#pragma once

#include "store/settings/XmlParser.h"

#include <string>
#include <vector>

namespace Velora::Store {

/// An XML file of at most 64 MiB. Every element and attribute must be known and be at its place. Errors name file and
/// line.
class XmlFile {
 public:
  /// @param levels the elements that may be in it, by their depth.
  /// @throws Error when the file cannot be read, is too large, is not well-formed, or contains anything else.
  XmlFile(const std::string& path, const std::vector<XmlLevel>& levels);

  /// All elements in their order, the root first.
  const std::vector<XmlElement>& Elements() const { return elements; }

  /// The value of an attribute. @throws Error when the attribute is missing or empty.
  std::string Required(const XmlElement& element, const std::string& name) const;

  /// Throws an Error: "file 'PATH', line N: " and the text.
  [[noreturn]] void Fail(const XmlElement& at, const std::string& text) const;

 private:
  [[noreturn]] void FailAtOffset(std::size_t offset, const std::string& text) const;

  std::string path;
  std::string content;  // to find the line of an offset
  std::vector<XmlElement> elements;
};

}  // namespace Velora::Store
