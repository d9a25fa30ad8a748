#pragma once

#include <string>

/// A library that is loaded by the name of its file and stays loaded until the process ends.
class LoadedLibrary {
 public:
  /// @throws std::runtime_error naming what cannot be loaded, and why.
  explicit LoadedLibrary(const std::string& file);

  /// A function of the library by its bare name.
  /// @throws std::runtime_error when the library has none of that name.
  template <typename Function>
  Function* Find(const char* name) const {
    return reinterpret_cast<Function*>(FindAddress(name));
  }

 private:
  void* FindAddress(const char* name) const;

  void* handle;
};
