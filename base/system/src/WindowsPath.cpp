#include "WindowsPath.h"

#include "WindowsText.h"

#include <windows.h>

namespace Velora::System {
namespace {

constexpr std::size_t longestShort = 200;  // leaves room for the names that are appended to a folder
constexpr std::wstring_view longForm = L"\\\\?\\";

}  // namespace

std::wstring WholePath(const std::string& path) {
  const std::wstring wide = Wide(path);
  std::wstring whole(GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr), L'\0');
  whole.resize(GetFullPathNameW(wide.c_str(), static_cast<DWORD>(whole.size()), whole.data(), nullptr));
  if (whole.size() <= longestShort || whole.starts_with(longForm)) {
    return whole;
  }
  return whole.starts_with(L"\\\\") ? L"\\\\?\\UNC\\" + whole.substr(2) : std::wstring(longForm) + whole;
}

}  // namespace Velora::System
