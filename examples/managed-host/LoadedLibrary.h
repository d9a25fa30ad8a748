#pragma once

#include <string>

/// A library that is loaded by the name of its file and stays loaded until the process ends.
class LoadedLibrary {
 public:
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
