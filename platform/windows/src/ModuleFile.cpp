#include "ModuleFile.h"

#include <cstdint>
#include <fstream>
#include <sstream>

namespace Velora::Windows {
namespace {

// The table shows a line break in a name as an escape; everything else stands as it is.
std::string WithLineBreaks(std::string name) {
  static constexpr std::string_view escape = "\\012";
  for (auto at = name.find(escape); at != std::string::npos; at = name.find(escape, at + 1)) {
    name.replace(at, escape.size(), 1, '\n');
  }
  return name;
}

}  // namespace

std::string MappedFileAt(const void* address) {
  const auto wanted = reinterpret_cast<std::uintptr_t>(address);
  std::ifstream mappings("/proc/self/maps");
  for (std::string line; std::getline(mappings, line);) {
    std::istringstream fields(line);
    std::uintptr_t first = 0;
    std::uintptr_t end = 0;
    char dash = 0;
    std::string permissions, offset, device, inode, name;
    fields >> std::hex >> first >> dash >> end >> permissions >> offset >> device >> inode >> std::ws;
    if (wanted < first || wanted >= end) {
      continue;
    }
    std::getline(fields, name);
    return name.empty() || name.front() != '/' ? std::string() : WithLineBreaks(std::move(name));
  }
  return {};
}

}  // namespace Velora::Windows
