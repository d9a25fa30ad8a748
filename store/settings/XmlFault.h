#pragma once

#include <expat.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Velora::Store {

/// An error in an XML text: what is wrong, what was expected, and where.
class XmlFault : public std::runtime_error {
 public:
  XmlFault(std::size_t offset, const std::string& text) : std::runtime_error(text), offset(offset) {}

  std::size_t offset;  ///< in bytes
};

/// A word of a file for an error: in quotes, and shortened if it is long.
std::string InQuotes(std::string_view text);

/// The error for what the parser refused.
/// @param offset the place in the text, in bytes.
/// @param root the name of the expected root element.
/// @param open the innermost element that is open at that place; empty if there is none.
XmlFault FaultOf(XML_Error error, std::string_view content, std::size_t offset, const std::string& root,
                 const std::string& open);

}  // namespace Velora::Store
