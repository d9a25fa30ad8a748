#include "ModuleFile.h"

#include <dlfcn.h>
#include <shlwapi.h>

#include <algorithm>
#include <cerrno>
#include <string>

BOOL GetModuleHandleExW(DWORD /*flags*/, LPCWSTR address, HMODULE* module) {
  Dl_info info{};
  *module = dladdr(address, &info) != 0 ? info.dli_fbase : nullptr;
  return *module != nullptr ? 1 : 0;
}

DWORD GetModuleFileNameW(HMODULE module, wchar_t* buffer, DWORD size) {
  const std::string path = Velora::Windows::MappedFileAt(module);
  if (path.empty() || size == 0) {
    return 0;
  }
  const std::size_t fitting = std::min<std::size_t>(path.size(), size - 1);
  std::transform(path.begin(), path.begin() + static_cast<std::ptrdiff_t>(fitting), buffer,
                 [](char byte) { return static_cast<wchar_t>(static_cast<unsigned char>(byte)); });
  buffer[fitting] = L'\0';
  return path.size() < size ? static_cast<DWORD>(path.size()) : size;
}

BOOL PathRemoveFileSpecW(wchar_t* path) {
  const std::wstring text(path);
  const std::size_t separator = text.rfind(L'/');
  const std::size_t kept = separator == std::wstring::npos ? 0 : std::max<std::size_t>(separator, 1);
  if (kept >= text.size()) {
    return 0;
  }
  path[kept] = L'\0';
  return 1;
}

errno_t wcstombs_s(std::size_t* written, char* destination, std::size_t size, const wchar_t* source,
                   std::size_t count) {
  *written = 0;
  if (size == 0) {
    return EINVAL;
  }
  std::size_t length = 0;
  for (; length < count && source[length] != L'\0'; ++length) {
    if (length + 1 >= size) {
      return ERANGE;
    }
    if (source[length] < 0 || source[length] > 255) {
      return EILSEQ;
    }
    destination[length] = static_cast<char>(static_cast<unsigned char>(source[length]));
  }
  destination[length] = '\0';
  *written = length + 1;
  return 0;
}
