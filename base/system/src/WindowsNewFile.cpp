#include "WindowsPath.h"
#include "WindowsReason.h"

#include <VeloraSystem/NewFile.h>

#include <windows.h>

#include <fcntl.h>
#include <io.h>

namespace Velora::System {
namespace {

// A virus scanner or an indexer holds a file for a moment after it was written.
constexpr DWORD longestWait = 2000;  // milliseconds
constexpr DWORD step = 20;
constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

void Expect(bool good) {
  if (!good) {
    throw NewFile::Failure(LastReason());
  }
}

/// Tries until it works, or until the other program that has the file open had time to close it.
template <typename Work>
DWORD Patiently(const Work& work) {
  for (const ULONGLONG end = GetTickCount64() + longestWait;; Sleep(step)) {
    if (work()) {
      return ERROR_SUCCESS;
    }
    const DWORD reason = GetLastError();
    if ((reason != ERROR_SHARING_VIOLATION && reason != ERROR_ACCESS_DENIED) || GetTickCount64() > end) {
      return reason;
    }
  }
}

/// Whether another program keeps a file from being removed or replaced.
bool IsHeld(const std::wstring& file) {
  const HANDLE opened = CreateFileW(file.c_str(), DELETE, shareAll, nullptr, OPEN_EXISTING, 0, nullptr);
  if (opened == INVALID_HANDLE_VALUE) {
    return GetLastError() == ERROR_SHARING_VIOLATION;
  }
  CloseHandle(opened);
  return false;
}

}  // namespace

std::FILE* NewFile::Make(const std::string& path, unsigned /*mode*/) {
  const HANDLE made = CreateFileW(WholePath(path).c_str(), GENERIC_READ | GENERIC_WRITE, shareAll, nullptr, CREATE_NEW,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
  Expect(made != INVALID_HANDLE_VALUE);
  return _fdopen(_open_osfhandle(reinterpret_cast<std::intptr_t>(made), _O_BINARY), "w+b");
}

void NewFile::Sync(std::FILE* file) {
  Expect(FlushFileBuffers(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file)))) != 0);
}

void NewFile::Move(const std::string& path, const std::string& name, Existing existing) {
  const std::wstring from = WholePath(path);
  const std::wstring to = WholePath(name);
  const DWORD how = MOVEFILE_WRITE_THROUGH | (existing == Existing::Replace ? MOVEFILE_REPLACE_EXISTING : 0U);
  const DWORD reason = Patiently([&] { return MoveFileExW(from.c_str(), to.c_str(), how) != 0; });
  if (reason != ERROR_SUCCESS) {
    throw Failure(IsHeld(to) ? "another program has it open; close it there and try again" : ReasonOf(reason));
  }
}

void NewFile::Remove(const std::string& path) {
  const std::wstring file = WholePath(path);
  static_cast<void>(Patiently([&file] { return DeleteFileW(file.c_str()) != 0; }));
}

}  // namespace Velora::System
