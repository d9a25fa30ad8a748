#include "ModuleFile.h"

#include <sys/stat.h>

#include <cstdint>
#include <fstream>
#include <sstream>
#include <string_view>

namespace Velora::Windows {
namespace {

bool IsFile(const std::string& name, ino_t number) {
  struct stat found {};
  return stat(name.c_str(), &found) == 0 && found.st_ino == number;
}

// The table shows a line break in a name as an escape, and a name that holds the characters of the escape as it is.
std::string NameOf(std::string shown, ino_t number) {
  static constexpr std::string_view escape = "\\012";
  if (IsFile(shown, number)) {
    return shown;
  }
  for (auto at = shown.find(escape); at != std::string::npos; at = shown.find(escape, at + 1)) {
    shown.replace(at, escape.size(), 1, '\n');
  }
  return shown;
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
    std::string permissions, offset, device;
    ino_t number = 0;
    fields >> std::hex >> first >> dash >> end >> permissions >> offset >> device >> std::dec >> number >> std::ws;
    if (wanted >= first && wanted < end) {
      std::string shown;
      std::getline(fields, shown);
      return shown.empty() || shown.front() != '/' ? std::string() : NameOf(std::move(shown), number);
    }
  }
  return {};
}

}  // namespace Velora::Windows
