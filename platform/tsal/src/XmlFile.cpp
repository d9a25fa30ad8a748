#include "XmlFile.h"

#include "WholeFile.h"

#include <TSAL/Error.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <filesystem>
#include <new>
#include <string_view>
#include <system_error>

namespace Quor::TolvaServices::Local {
namespace {

std::string InQuotes(std::string_view text) { return "'" + std::string(text) + "'"; }

std::string ListOf(std::initializer_list<const char*> names) {
  std::string list;
  for (const char* name : names) {
    list += (list.empty() ? "" : ", ") + InQuotes(name);
  }
  return list.empty() ? "none" : list;
}

// For the errors, which a reader may see when the current directory is another.
std::string AbsoluteWhereKnown(const std::string& path) {
  std::error_code unknown;
  const std::filesystem::path absolute = std::filesystem::absolute(path, unknown);
  return unknown ? path : absolute.string();
}

// Where a reference such as "&#0;" names no character, npos when none does. The parser ends a value at a zero and keeps
// the low bits of a number that is too large.
std::size_t ReferenceToNothing(std::string_view text) {
  for (std::size_t at = text.find("&#"); at != std::string_view::npos; at = text.find("&#", at + 2)) {
    const std::string_view number = text.substr(at + 2);
    const bool hex = !number.empty() && number.front() == 'x';
    std::uint32_t code = 0;
    const auto read =
        std::from_chars(number.data() + (hex ? 1 : 0), number.data() + number.size(), code, hex ? 16 : 10);
    if (read.ec == std::errc::result_out_of_range || (read.ec == std::errc() && (code == 0 || code > 0x10FFFF))) {
      return at;
    }
  }
  return std::string_view::npos;
}

}  // namespace

XmlFile::XmlFile(const std::string& path, const char* rootName)
    : path(AbsoluteWhereKnown(path)), content(ReadWholeFile(path)) {
  const std::string expected = "expected one element " + InQuotes(rootName);
  if (const std::size_t zero = content.find('\0'); zero != std::string::npos) {
    FailAtOffset(static_cast<std::ptrdiff_t>(zero), "unexpected zero byte; expected text");  // the parser stops there
  }
  if (const std::size_t reference = ReferenceToNothing(content); reference != std::string::npos) {
    FailAtOffset(static_cast<std::ptrdiff_t>(reference), "a reference to no character; expected &#1; to &#1114111;");
  }
  // As a fragment, so that text and further elements beside the root are seen and refused; without the blanks around a
  // text, so that the line is that of its first letter.
  const pugi::xml_parse_result parsed =
      document.load_buffer(content.data(), content.size(),
                           pugi::parse_default | pugi::parse_fragment | pugi::parse_trim_pcdata, pugi::encoding_utf8);
  if (parsed.status == pugi::status_out_of_memory) {
    throw std::bad_alloc();
  }
  if (!parsed) {
    FailAtOffset(parsed.offset, std::string("not well-formed XML: ") + parsed.description() + "; " + expected);
  }
  for (const pugi::xml_node node : document.children()) {
    if (root || std::string_view(node.name()) != rootName) {
      Fail(node, "unexpected " + InQuotes(*node.name() != '\0' ? node.name() : node.value()) + "; " + expected);
    }
    root = node;
  }
  if (!root) {
    FailAtOffset(0, "no element in the file; " + expected);
  }
}

void XmlFile::ExpectAttributes(pugi::xml_node element, std::initializer_list<const char*> names) const {
  for (const pugi::xml_attribute attribute : element.attributes()) {
    const std::string_view name = attribute.name();
    if (std::find(names.begin(), names.end(), name) == names.end()) {
      Fail(element,
           InQuotes(element.name()) + " has an unknown attribute " + InQuotes(name) + "; expected: " + ListOf(names));
    }
    if (element.attribute(attribute.name()) != attribute) {
      Fail(element, InQuotes(element.name()) + " has the attribute " + InQuotes(name) + " twice; expected it once");
    }
  }
}

void XmlFile::ExpectElements(pugi::xml_node element, const char* name) const {
  for (const pugi::xml_node child : element.children()) {
    const std::string_view found = child.name();
    const std::string expected = *name == '\0' ? "nothing" : "elements " + InQuotes(name);
    if (child.type() != pugi::node_element) {
      Fail(child, "unexpected text " + InQuotes(child.value()) + "; expected " + expected);
    }
    if (found != name) {
      Fail(child, "unknown element " + InQuotes(found) + "; expected " + expected);
    }
  }
}

std::string XmlFile::Required(pugi::xml_node element, const char* name) const {
  std::string value = element.attribute(name).value();
  if (value.empty()) {
    Fail(element, InQuotes(element.name()) + " has no " + InQuotes(name) + "; expected " + name + "=\"...\"");
  }
  return value;
}

void XmlFile::Fail(pugi::xml_node at, const std::string& text) const { FailAtOffset(at.offset_debug(), text); }

void XmlFile::FailAtOffset(std::ptrdiff_t offset, const std::string& text) const {
  const auto end = content.begin() + std::clamp<std::ptrdiff_t>(offset, 0, static_cast<std::ptrdiff_t>(content.size()));
  const auto line = 1 + std::count(content.begin(), end, '\n');
  throw TsError("file '" + path + "', line " + std::to_string(line) + ": " + text);
}

}  // namespace Quor::TolvaServices::Local
