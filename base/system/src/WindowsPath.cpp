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

/// A path without the signs of the long form.
std::wstring ShortForm(const std::wstring& path) {
  if (path.starts_with(longShare)) {
    return L"\\\\" + path.substr(longShare.size());
  }
  return path.substr(path.starts_with(longForm) ? longForm.size() : 0);
}

bool IsSeparator(char character) { return character == '\\' || character == '/'; }

}  // namespace

std::wstring WholePath(const std::wstring& given) {
  const std::wstring path = ShortForm(given);
  std::wstring whole(GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
  whole.resize(GetFullPathNameW(path.c_str(), static_cast<DWORD>(whole.size()), whole.data(), nullptr));
  if (whole.size() <= longestShort) {
    return whole;
  }
  return whole.starts_with(L"\\\\") ? std::wstring(longShare) + whole.substr(2) : std::wstring(longForm) + whole;
}

std::filesystem::path PathOf(const std::string& text) {
  const std::wstring path = ShortForm(Wide(text));
  return path.size() > longestShort ? WholePath(path) : path;
}

std::string TextOf(const std::filesystem::path& path) { return Utf8(ShortForm(path.native())); }

std::string AtAnyLength(const std::string& path) { return Utf8(WholePath(Wide(path))); }

// "C:\file", "\\server\share\file", "\file", which is on the drive of the folder, or "file".
std::string Joined(const std::string& folder, const std::string& path) {
  const bool isRooted = !path.empty() && IsSeparator(path[0]);
  const bool onShare = path.size() > 1 && isRooted && IsSeparator(path[1]);
  const bool onDrive = path.size() > 1 && path[1] == ':';
  if (folder.empty() || onShare || onDrive) {
    return path;
  }
  if (isRooted) {
    return Utf8(std::filesystem::path(Wide(folder)).root_name().native()) + path;
  }
  return folder + (IsSeparator(folder.back()) ? "" : "\\") + path;
}

std::string Absolute(const std::string& path) { return TextOf(WholePath(Wide(path))); }

std::string AsLoaded(const std::string& library) { return Absolute(library); }

}  // namespace Velora::System
