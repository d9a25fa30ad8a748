#pragma once

#include <string>

namespace Velora::System {

/// A library that is loaded from its file and stays loaded until the process ends.
class LoadedLibrary {
 public:
  /// @param file is its absolute path, or a name that the system looks for.
  /// @throws std::runtime_error if it cannot be loaded, with the file and the reason.
  explicit LoadedLibrary(const std::string& file);

  /// A function of the library by its unmangled name.
  /// @throws std::runtime_error if the library has no function with this name.
  template <typename Function>
  Function* Find(const char* name) const {
    return reinterpret_cast<Function*>(FindAddress(name));
  }

 private:
  void* FindAddress(const char* name) const;

  void* handle;
};

}  // namespace Velora::System
