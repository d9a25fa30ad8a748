#include "LoadedLibrary.h"

#include <windows.h>

#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace {

std::string Reason() { return std::system_category().message(static_cast<int>(GetLastError())); }

}  // namespace

LoadedLibrary::LoadedLibrary(const std::string& file) : handle(LoadLibraryW(std::filesystem::path(file).c_str())) {
  if (handle == nullptr) {
    throw std::runtime_error("library '" + file + "' cannot be loaded: " + Reason());
  }
}

void* LoadedLibrary::FindAddress(const char* name) const {
  const auto address = GetProcAddress(static_cast<HMODULE>(handle), name);
  if (address == nullptr) {
    throw std::runtime_error(std::string("function '") + name + "' cannot be found: " + Reason());
  }
  return reinterpret_cast<void*>(address);
}
