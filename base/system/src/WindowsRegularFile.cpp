#include "WindowsOpen.h"
#include "WindowsPath.h"
#include "WindowsReason.h"
#include "WindowsText.h"

#include <fcntl.h>
#include <io.h>

#include <array>

namespace Velora::System {

HANDLE Open(const std::string& path, DWORD access, DWORD disposition, DWORD attributes) {
  const std::wstring whole = WholePath(Wide(path));
  HANDLE opened = INVALID_HANDLE_VALUE;
  const DWORD reason = Patiently([&] {
    opened = CreateFileW(whole.c_str(), access, shareAll, nullptr, disposition, attributes, nullptr);
    return opened != INVALID_HANDLE_VALUE ? ERROR_SUCCESS : GetLastError();
  });
  if (reason != ERROR_SUCCESS) {
    throw Failure(ReasonOf(reason));
  }
  return opened;
}

File StreamOf(HANDLE handle, const char* mode) {
  return {_fdopen(_open_osfhandle(reinterpret_cast<std::intptr_t>(handle), _O_BINARY), mode), &std::fclose};
}

File OpenToRead(const std::string& path) { return StreamOf(Open(path, GENERIC_READ, OPEN_EXISTING, 0), "rb"); }

File OpenRegularFile(const std::string& path) {
  const HANDLE opened = Open(path, GENERIC_READ, OPEN_EXISTING, 0);
  if (GetFileType(opened) != FILE_TYPE_DISK) {
    CloseHandle(opened);
    throw Failure(ReasonOf(ERROR_INVALID_PARAMETER));
  }
  return StreamOf(opened, "rb");
}

File OpenTemporary() {
  std::array<wchar_t, MAX_PATH + 1> folder{}, file{};
  if (GetTempPathW(static_cast<DWORD>(folder.size()), folder.data()) == 0 ||
      GetTempFileNameW(folder.data(), L"ts", 0, file.data()) == 0) {
    throw Failure(LastReason());
  }
  return StreamOf(Open(Utf8(file.data()), GENERIC_READ | GENERIC_WRITE | DELETE, OPEN_EXISTING,
                       FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE),
                  "w+b");
}

}  // namespace Velora::System
