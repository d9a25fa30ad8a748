#include "WindowsOpen.h"

#include <VeloraSystem/FileStamp.h>
#include <VeloraSystem/Path.h>

namespace Velora::System {

// Through a handle: a folder gets to know the size and the time of an open file late.
FileStamp StampOf(const std::string& path) {
  HANDLE const handle = CreateFileW(PathOf(path).c_str(), FILE_READ_ATTRIBUTES, shareAll, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
  BY_HANDLE_FILE_INFORMATION about{};
  if (handle == INVALID_HANDLE_VALUE) {
    return {};
  }
  GetFileInformationByHandle(handle, &about);
  CloseHandle(handle);
  const auto whole = [](DWORD high, DWORD low) { return (std::uint64_t{high} << 32U) | low; };
  return {whole(about.nFileIndexHigh, about.nFileIndexLow), whole(about.nFileSizeHigh, about.nFileSizeLow),
          whole(about.ftLastWriteTime.dwHighDateTime, about.ftLastWriteTime.dwLowDateTime)};
}

}  // namespace Velora::System
