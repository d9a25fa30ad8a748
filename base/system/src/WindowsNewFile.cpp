#include "WindowsOpen.h"
#include "WindowsPath.h"
#include "WindowsReason.h"
#include "WindowsText.h"

#include <VeloraSystem/NewFile.h>

#include <io.h>

namespace Velora::System {
namespace {

DWORD ReasonUnless(BOOL done) { return done != 0 ? ERROR_SUCCESS : GetLastError(); }

/// Whether a program has a file open.
bool IsOpen(const std::wstring& file) {
  const HANDLE alone = CreateFileW(file.c_str(), DELETE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  const bool isOpen = alone == INVALID_HANDLE_VALUE && GetLastError() == ERROR_SHARING_VIOLATION;
  if (alone != INVALID_HANDLE_VALUE) {
    CloseHandle(alone);
  }
  return isOpen;
}

}  // namespace

File NewFile::Make(const std::string& path, unsigned /*mode*/) {
  return StreamOf(Open(path, GENERIC_READ | GENERIC_WRITE, CREATE_NEW, FILE_ATTRIBUTE_NORMAL), "w+b");
}

void NewFile::Sync(std::FILE* file) {
  if (FlushFileBuffers(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file)))) == 0) {
    throw Failure(LastReason());
  }
}

void NewFile::Move(const std::string& path, const std::string& name, Existing existing) {
  const std::wstring from = WholePath(Wide(path));
  const std::wstring to = WholePath(Wide(name));
  const DWORD how = MOVEFILE_WRITE_THROUGH | (existing == Existing::Replace ? MOVEFILE_REPLACE_EXISTING : 0U);
  // Access is denied while a program has the file open, too. Who had it open can let go before anybody looks.
  const DWORD reason = Patiently([&] {
    const DWORD why = ReasonUnless(MoveFileExW(from.c_str(), to.c_str(), how));
    return why == ERROR_ACCESS_DENIED ? ERROR_SHARING_VIOLATION : why;
  });
  if (reason != ERROR_SUCCESS) {
    throw Failure(ReasonOf(reason == ERROR_SHARING_VIOLATION && !IsOpen(to) ? ERROR_ACCESS_DENIED : reason));
  }
}

void NewFile::Remove(const std::string& path) {
  const std::wstring file = WholePath(Wide(path));
  static_cast<void>(Patiently([&file] { return ReasonUnless(DeleteFileW(file.c_str())); }));
}

}  // namespace Velora::System
