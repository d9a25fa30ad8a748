#include "InternalsTest.h"

#include <windows.h>

#include <algorithm>
#include <cstdlib>

SystemCalls systemCalls;

extern "C" {
static BOOL FindModule(DWORD flags, LPCWSTR /*address*/, HMODULE* /*module*/) {
  return systemCalls.moduleIsFound && flags == 6 ? 1 : 0;
}

static DWORD ModuleFile(HMODULE /*module*/, wchar_t* buffer, DWORD size) {
  Fakes::UnwrittenCall("GetModuleFileNameW");
  const std::wstring& path = systemCalls.moduleFile;
  const std::size_t fitting = std::min<std::size_t>(path.size(), size - 1);
  std::copy_n(path.begin(), fitting, buffer);
  buffer[fitting] = L'\0';
  return path.size() < size ? static_cast<DWORD>(path.size()) : size;
}

static int HostName(char* buffer, int size) {
  const std::string& name = systemCalls.hostName;
  std::copy_n(name.begin(), std::min(name.size(), static_cast<std::size_t>(size)), buffer);
  return name.empty() ? -1 : 0;
}

// The linker leads the component's calls of the names behind the prefix here; on Windows, its pointers to them.
#ifdef _WIN32
decltype(&GetModuleHandleExW) __wrap___imp_GetModuleHandleExW = FindModule;
decltype(&GetModuleFileNameW) __wrap___imp_GetModuleFileNameW = ModuleFile;
decltype(&gethostname) __wrap___imp_gethostname = HostName;
#else
BOOL __wrap_GetModuleHandleExW(DWORD flags, LPCWSTR address, HMODULE* module) {
  return FindModule(flags, address, module);
}
DWORD __wrap_GetModuleFileNameW(HMODULE module, wchar_t* buffer, DWORD size) {
  return ModuleFile(module, buffer, size);
}
int __wrap_gethostname(char* buffer, std::size_t size) { return HostName(buffer, static_cast<int>(size)); }

errno_t __real_wcstombs_s(std::size_t* written, char* destination, std::size_t size, const wchar_t* source,
                          std::size_t count);
errno_t __wrap_wcstombs_s(std::size_t* written, char* destination, std::size_t size, const wchar_t* source,
                          std::size_t count) {
  const errno_t code = __real_wcstombs_s(written, destination, size, source, count);
  *written += systemCalls.furtherBytes;
  return code;
}
#endif
}
