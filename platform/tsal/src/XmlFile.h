#pragma once

#include <pugixml.hpp>

#include <initializer_list>
#include <string>

namespace Quor::TolvaServices::Local {

/// An XML file of at most 64 MiB in which every element and attribute must be known and stand where it may. What is
/// wrong raises a TsError that names file and line.
class XmlFile {
 public:
  /// @throws TsError when the file cannot be read, is empty, too large, not well-formed, or has another root element.
  XmlFile(const std::string& path, const char* rootName);

  pugi::xml_node Root() const { return root; }

  /// Refuses attributes that are not named here or stand twice.
  void ExpectAttributes(pugi::xml_node element, std::initializer_list<const char*> names) const;
  /// Refuses text, and elements of another name.
  void ExpectElements(pugi::xml_node element, const char* name) const;
  /// The value of an attribute that must be there and not be empty.
  std::string Required(pugi::xml_node element, const char* name) const;

  /// Raises a TsError: "file 'PATH', line N: " and the text.
  [[noreturn]] void Fail(pugi::xml_node at, const std::string& text) const;

 private:
  [[noreturn]] void FailAtOffset(std::ptrdiff_t offset, const std::string& text) const;

  std::string path;
  std::string content;  // lines are counted in it: the parser knows offsets only
  pugi::xml_document document;
  pugi::xml_node root;
};

}  // namespace Quor::TolvaServices::Local
