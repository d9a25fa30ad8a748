#include "store/settings/XmlFault.h"

#include <VeloraText/Character.h>

#include <algorithm>
#include <array>

namespace Velora::Store {
namespace {

constexpr std::size_t longestShown = 80;
constexpr const char* bareAmpersand = "a bare '&'; expected &amp;";
constexpr const char* invalidReference =
    "an invalid character reference; expected the number of a character, as in &#228;";

XmlFault NotWellFormed(std::size_t offset, const std::string& text) { return {offset, "not well-formed XML: " + text}; }

// The name of the element, tag or attribute that begins at an offset.
std::string_view NameAt(std::string_view content, std::size_t offset) {
  const std::string_view rest = content.substr(offset);
  const std::size_t marks = rest.starts_with("<") ? 1 : 0;
  return rest.substr(marks, rest.find_first_of(" \t\r\n<>/='\"", marks) - marks);
}

XmlFault InvalidToken(std::string_view content, std::size_t offset) {
  const std::size_t mark = content.substr(0, offset).find_last_of("&;<>='\" \t\r\n");
  if (mark != std::string_view::npos && content[mark] == '&') {
    return content.substr(mark + 1).starts_with("#") ? XmlFault(mark, invalidReference)
                                                     : NotWellFormed(mark, bareAmpersand);
  }
  const std::string_view rest = content.substr(offset);
  if (rest.starts_with("&")) {
    return NotWellFormed(offset, bareAmpersand);
  }
  if (rest.starts_with("<")) {
    return NotWellFormed(offset, "a bare '<'; expected &lt;, or the end of the tag before it");
  }
  const auto byte = static_cast<unsigned char>(rest.empty() ? ' ' : rest.front());
  if (byte < ' ') {
    return NotWellFormed(offset, "a control character, number " + std::to_string(byte) + "; expected text");
  }
  return NotWellFormed(offset, "unexpected " + InQuotes(rest.substr(0, Text::SequenceLength(rest))) +
                                   "; expected tags as in <Name Attribute=\"value\"/>");
}

// What begins after a '&': a number of a character, or one of the names that XML has.
bool IsKnown(std::string_view reference) {
  static constexpr std::array<std::string_view, 6> known{"#", "amp;", "lt;", "gt;", "quot;", "apos;"};
  return std::any_of(known.begin(), known.end(), [&](std::string_view one) { return reference.starts_with(one); });
}

// For an entity in an attribute, the parser gives the place of the tag.
XmlFault UndefinedEntity(std::string_view content, std::size_t offset) {
  for (std::size_t at = content.find('&', offset); at != std::string_view::npos; at = content.find('&', at + 1)) {
    const std::string_view after = content.substr(at + 1, longestShown);
    const std::string_view name = after.substr(0, after.find(';'));
    if (!name.empty() && !IsKnown(after)) {
      return NotWellFormed(at, "unknown entity " + InQuotes('&' + std::string(name) + ';') +
                                   "; expected &amp; for a '&', or &lt;, &gt;, &quot;, &apos; or the character itself");
    }
  }
  return NotWellFormed(offset, "an unknown entity; expected &amp;, &lt;, &gt;, &quot; or &apos;");
}

}  // namespace

std::string InQuotes(std::string_view text) {
  std::size_t end = std::min(text.size(), longestShown);
  while (end < text.size() && end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) {
    --end;
  }
  return "'" + std::string(text.substr(0, end)) + (end < text.size() ? "...'" : "'");
}

XmlFault FaultOf(XML_Error error, std::string_view content, std::size_t offset, const std::string& root,
                 const std::string& open) {
  const std::string expectedRoot = "; expected one element " + InQuotes(root);
  switch (error) {
    case XML_ERROR_NO_ELEMENTS:
      return open.empty()
                 ? XmlFault(0, "no element in the file" + expectedRoot)
                 : NotWellFormed(offset, "the file ends within " + InQuotes(open) + "; expected </" + open + '>');
    case XML_ERROR_SYNTAX:
    case XML_ERROR_JUNK_AFTER_DOC_ELEMENT:
      return {offset, "unexpected " + InQuotes(NameAt(content, offset)) + expectedRoot};
    case XML_ERROR_INVALID_TOKEN:
      return InvalidToken(content, offset);
    case XML_ERROR_UNCLOSED_TOKEN:
      return NotWellFormed(offset, "what begins here does not end; expected its '>', '-->' or quotation mark");
    case XML_ERROR_TAG_MISMATCH:
      return NotWellFormed(offset, InQuotes(open) + " is ended by another name, " + InQuotes(NameAt(content, offset)) +
                                       "; expected </" + open + '>');
    case XML_ERROR_DUPLICATE_ATTRIBUTE:
      return {offset, InQuotes(NameAt(content, content.rfind('<', offset))) + " has the attribute " +
                          InQuotes(NameAt(content, offset)) + " twice; expected it once"};
    case XML_ERROR_UNDEFINED_ENTITY:
      return UndefinedEntity(content, offset);
    case XML_ERROR_BAD_CHAR_REF:
      return {offset, invalidReference};
    case XML_ERROR_MISPLACED_XML_PI:
      return NotWellFormed(offset, "'<?xml' within the file; expected it at the very start");
    case XML_ERROR_XML_DECL:
      return NotWellFormed(offset, "a wrong declaration; expected <?xml version=\"1.0\" encoding=\"UTF-8\"?>");
    default:
      return NotWellFormed(offset, XML_ErrorString(error) + expectedRoot);
  }
}

}  // namespace Velora::Store
