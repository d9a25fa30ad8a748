#include "WindowsOpen.h"
#include "WindowsPath.h"
#include "WindowsText.h"

#include <VeloraSystem/Share.h>

#include <array>
#include <string_view>

namespace Velora::System {
namespace {

constexpr DWORD longestPath = 32768;

/// Where a folder is once links and names of drives are followed; empty if the system does not tell it.
std::wstring PlaceOf(const std::wstring& folder) {
  const HANDLE opened = CreateFileW(folder.c_str(), FILE_READ_ATTRIBUTES, shareAll, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (opened == INVALID_HANDLE_VALUE) {
    return {};
  }
  std::wstring place(longestPath, L'\0');
  place.resize(GetFinalPathNameByHandleW(opened, place.data(), longestPath, FILE_NAME_NORMALIZED));
  CloseHandle(opened);
  return place;
}

// "\\server\folder" or "\\?\UNC\server\folder", but not "\\?\C:\folder" or "\\.\device".
bool NamesServer(std::wstring_view path) {
  return path.starts_with(L"\\\\?\\UNC\\") ||
         (path.starts_with(L"\\\\") && !path.starts_with(L"\\\\?\\") && !path.starts_with(L"\\\\.\\"));
}

bool IsOnNetworkDrive(const std::wstring& path) {
  std::wstring drive(longestPath, L'\0');
  return GetVolumePathNameW(path.c_str(), drive.data(), longestPath) != 0 &&
         GetDriveTypeW(drive.c_str()) == DRIVE_REMOTE;
}

}  // namespace

bool IsOnShare(const std::string& path) {
  const std::wstring whole = WholePath(Wide(path));
  return NamesServer(whole) || NamesServer(PlaceOf(whole.substr(0, whole.find_last_of(L'\\') + 1))) ||
         IsOnNetworkDrive(whole);
}

}  // namespace Velora::System
