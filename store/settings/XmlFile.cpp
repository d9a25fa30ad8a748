#include "store/settings/XmlFile.h"

#include "store/settings/WholeFile.h"

#include <VeloraSystem/Failure.h>
#include <VeloraSystem/Path.h>
#include "store/Error.h"

#include <algorithm>
#include <cstddef>

namespace Velora::Store {
namespace {

// The absolute path, for errors: a reader of the log does not know the current directory.
std::string AbsoluteWhereKnown(const std::string& path) {
  try {
    return System::Absolute(path);
  } catch (const System::Failure&) {
    return path;
  }
}

}  // namespace

XmlFile::XmlFile(const std::string& path, const std::vector<XmlLevel>& levels)
    : path(AbsoluteWhereKnown(path)), content(ReadWholeFile(path)) {
  try {
    elements = ParseXml(content, levels);
  } catch (const XmlFault& fault) {
    FailAtOffset(fault.offset, fault.what());
  }
}

std::string XmlFile::Required(const XmlElement& element, const std::string& name) const {
  std::string value = element.Value(name);
  if (value.empty()) {
    Fail(element, InQuotes(element.name) + " has no " + InQuotes(name) + "; expected " + name + "=\"...\"");
  }
  return value;
}

void XmlFile::Fail(const XmlElement& at, const std::string& text) const { FailAtOffset(at.offset, text); }

void XmlFile::FailAtOffset(std::size_t offset, const std::string& text) const {
  const auto end = content.begin() + static_cast<std::ptrdiff_t>(std::min(offset, content.size()));
  const auto line = 1 + std::count(content.begin(), end, '\n');
  throw Error("file '" + path + "', line " + std::to_string(line) + ": " + text);
}

}  // namespace Velora::Store
