#include "WindowsPath.h"
#include "WindowsReason.h"
#include "WindowsText.h"

#include <VeloraSystem/LoadedLibrary.h>
#include <VeloraSystem/Path.h>

#include <windows.h>

#include <stdexcept>

namespace Velora::System {
namespace {

// The libraries below one that is named by its path are looked for in its folder, not in that of the program.
HMODULE Load(const std::string& file) {
  return PathOf(file).is_absolute()
             ? LoadLibraryExW(WholePath(Wide(file)).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)
             : LoadLibraryW(Wide(file).c_str());
}

}  // namespace

LoadedLibrary::LoadedLibrary(const std::string& file) : handle(Load(file)) {
  if (handle == nullptr) {
    throw std::runtime_error("library '" + file + "' cannot be loaded: " + LastReason());
  }
}

void* LoadedLibrary::FindAddress(const char* name) const {
  const auto address = GetProcAddress(static_cast<HMODULE>(handle), name);
  if (address == nullptr) {
    throw std::runtime_error(std::string("function '") + name + "' cannot be found: " + LastReason());
  }
  return reinterpret_cast<void*>(address);
}

}  // namespace Velora::System
