#pragma once

#include <VeloraSystem/RegularFile.h>

#include <windows.h>

#include <string>

namespace Velora::System {

/// What others may do with a file that is open here.
constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// Does something until the reason why it fails is another one than that a program has the file open, or no longer for
/// a moment: virus scanners, indexers and viewers let go of it.
/// @param work returns the reason, or ERROR_SUCCESS.
template <typename Work>
DWORD Patiently(const Work& work) {
  constexpr DWORD longest = 2000;  // milliseconds
  constexpr DWORD step = 20;
  const ULONGLONG end = GetTickCount64() + longest;
  DWORD reason = work();
  while (reason == ERROR_SHARING_VIOLATION && GetTickCount64() < end) {
    Sleep(step);
    reason = work();
  }
  return reason;
}

/// Opens or makes a file. @throws Failure
HANDLE Open(const std::string& path, DWORD access, DWORD disposition, DWORD attributes);
/// The stream of a handle, which it closes.
File StreamOf(HANDLE handle, const char* mode);

}  // namespace Velora::System
