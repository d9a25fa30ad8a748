#include "bringup/DataRootDirectory.h"

#include "state/ProcessState.h"
#include "state/TsLogging.h"
#include "trace/ComposeLine.h"
#include "trace/TraceScope.h"

#include <windows.h>

#include <shlwapi.h>

#include <array>
#include <cstdlib>
#include <cwchar>
#include <typeinfo>
#include <vector>

namespace Quor::Velora::Infra::TsLogging {
namespace {

// The system truncates a path that does not fit, and the folder of a truncated path is wrong. So the buffer grows until
// the path fits. Paths of 260 characters and more are common outside Windows, and possible on Windows.
std::vector<wchar_t> ModuleFileName(HMODULE module) {
  for (DWORD size = 260;; size *= 2) {
    std::vector<wchar_t> path(size);
    const DWORD length = GetModuleFileNameW(module, path.data(), size);
    if (length == 0) {
      return {};
    }
    if (length < size) {
      return path;
    }
  }
}

}  // namespace

std::wstring GetModuleDirectory() {
  constexpr auto separator = static_cast<wchar_t>(std::filesystem::path::preferred_separator);
  HMODULE module = nullptr;
  if (GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                         reinterpret_cast<LPCWSTR>(&GetModuleDirectory), &module) == 0) {
    return {};
  }
  std::vector<wchar_t> path = ModuleFileName(module);
  if (path.empty()) {
    return {};
  }
  PathRemoveFileSpecW(path.data());
  std::wstring directory(path.data());
  if (!directory.empty() && directory.back() != separator) {
    directory += separator;
  }
  return directory;
}

std::string ToNarrowString(const wchar_t* text) {
  if (text == nullptr) {
    return {};
  }
  constexpr std::size_t shortLength = 4096;
  const std::size_t length = std::wcslen(text);
  std::array<char, shortLength> shortBuffer{};
  std::vector<char> longBuffer(length < shortLength ? 0 : length + 1);
  char* const buffer = length < shortLength ? shortBuffer.data() : longBuffer.data();
  std::size_t written = 0;
  static_cast<void>(wcstombs_s(&written, buffer, length + 1, text, length));  // the count says more than the code
  if (written != length + 1) {
    throw std::bad_cast();
  }
  return buffer;
}

std::filesystem::path TsLogging::GetDataRootDirectory() {
  const TraceScope scope(traceSource, Operation::getDataRootDirectory);
  const std::string folder = ToNarrowString(GetModuleDirectory().c_str());
  scope.WriteInfo(ComposeLine("dataRootDirectory path: ", folder));
  return folder;
}

}  // namespace Quor::Velora::Infra::TsLogging
