#include "ModuleFile.h"

#include <VeloraSystem/Path.h>

#include <windows.h>

#include <filesystem>
#include <type_traits>

namespace Velora::CInterface {
namespace {

/// The path of a module's file, which the system truncates if it does not fit.
std::wstring FileOf(HMODULE module) {
  for (DWORD size = 260;; size *= 2) {
    std::wstring file(size, L'\0');
    const DWORD length = GetModuleFileNameW(module, file.data(), size);
    if (length < size) {
      file.resize(length);
      return file;
    }
  }
}

}  // namespace

std::string ModuleFile(const void* address) {
  HMODULE module = nullptr;
  if (GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                         static_cast<LPCWSTR>(address), &module) == 0) {
    return {};
  }
  const std::wstring file = FileOf(module);
  if constexpr (std::is_same_v<std::filesystem::path::value_type, wchar_t>) {
    return System::TextOf(file);
  } else {  // each byte of a path is one wide character
    std::string path;
    for (const wchar_t byte : file) {
      path += static_cast<char>(byte);
    }
    return path;
  }
}

}  // namespace Velora::CInterface
