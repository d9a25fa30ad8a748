#include "InternalsTest.h"

#include <windows.h>

#include <algorithm>

SystemCalls systemCalls;

// The linker leads the component's calls of the names behind the prefix here.
extern "C" {
BOOL __wrap_GetModuleHandleExW(DWORD flags, LPCWSTR /*address*/, HMODULE* /*module*/) {
  return systemCalls.moduleIsFound && flags == 6 ? 1 : 0;
}

DWORD __wrap_GetModuleFileNameW(HMODULE /*module*/, wchar_t* buffer, DWORD size) {
  Fakes::UnwrittenCall("GetModuleFileNameW");
  const std::wstring& path = systemCalls.moduleFile;
  const std::size_t fitting = std::min<std::size_t>(path.size(), size - 1);
  std::copy_n(path.begin(), fitting, buffer);
  buffer[fitting] = L'\0';
  return path.size() < size ? static_cast<DWORD>(path.size()) : size;
}

int __wrap_gethostname(char* buffer, std::size_t size) {
  const std::string& name = systemCalls.hostName;
  std::copy_n(name.begin(), std::min(name.size(), size), buffer);
  return name.empty() ? -1 : 0;
}
}
