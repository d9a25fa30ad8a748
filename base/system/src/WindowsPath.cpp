#include "WindowsPath.h"

#include "WindowsText.h"

#include <VeloraSystem/Path.h>

#include <windows.h>

#include <string_view>

namespace Velora::System {
namespace {

constexpr std::size_t longestShort = 200;  // leaves room for the names that are appended to a folder
constexpr std::wstring_view longForm = L"\\\\?\\";
constexpr std::wstring_view longShare = L"\\\\?\\UNC\\";

}  // namespace

std::wstring WholePath(const std::wstring& path) {
  std::wstring whole(GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
  whole.resize(GetFullPathNameW(path.c_str(), static_cast<DWORD>(whole.size()), whole.data(), nullptr));
  if (whole.size() <= longestShort || whole.starts_with(longForm)) {
    return whole;
  }
  return whole.starts_with(L"\\\\") ? std::wstring(longShare) + whole.substr(2) : std::wstring(longForm) + whole;
}

std::filesystem::path PathOf(const std::string& text) {
  const std::wstring path = Wide(text);
  return path.size() > longestShort ? WholePath(path) : path;
}

std::string TextOf(const std::filesystem::path& path) {
  const std::wstring_view text = path.native();
  if (text.starts_with(longShare)) {
    return "\\\\" + Utf8(text.substr(longShare.size()));
  }
  return Utf8(text.substr(text.starts_with(longForm) ? longForm.size() : 0));
}

std::string AtAnyLength(const std::string& text) { return Utf8(WholePath(Wide(text))); }

}  // namespace Velora::System
