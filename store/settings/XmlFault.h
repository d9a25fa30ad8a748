#pragma once

#include <expat.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Velora::Store {

/// What is wrong with a text of XML and what was expected, and where.
class XmlFault : public std::runtime_error {
 public:
  XmlFault(std::size_t offset, const std::string& text) : std::runtime_error(text), offset(offset) {}

  std::size_t offset;  ///< in bytes
};

/// A word of a file as errors show it: in quotes, and not at any length.
std::string InQuotes(std::string_view text);

/// What the parser refused.
/// @param offset where.
/// @param root the element that the text should hold.
/// @param open the innermost element that is open there; empty for none.
XmlFault FaultOf(XML_Error error, std::string_view content, std::size_t offset, const std::string& root,
                 const std::string& open);

}  // namespace Velora::Store
