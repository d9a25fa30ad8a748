#include <VeloraSystem/LoadedLibrary.h>

#include <dlfcn.h>

#include <stdexcept>

namespace Velora::System {

LoadedLibrary::LoadedLibrary(const std::string& file) : handle(dlopen(file.c_str(), RTLD_NOW)) {
  if (handle == nullptr) {
    throw std::runtime_error("library '" + file + "' cannot be loaded: " + dlerror());
  }
}

void* LoadedLibrary::FindAddress(const char* name) const {
  void* const address = dlsym(handle, name);
  if (address == nullptr) {
    throw std::runtime_error(std::string("function '") + name + "' cannot be found: " + dlerror());
  }
  return address;
}

}  // namespace Velora::System
