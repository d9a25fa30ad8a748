#include <VeloraSystem/RegularFile.h>
#include <VeloraSystem/System.h>

#include <io.h>
#include <windows.h>

#include <array>
#include <cerrno>

namespace Velora::System {

void MakeOwnFile(const std::string& /*path*/) {}

std::FILE* OpenRegularFile(const std::string& path) {
  std::FILE* const file = std::fopen(path.c_str(), "rb");
  if (file != nullptr && GetFileType(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file)))) != FILE_TYPE_DISK) {
    std::fclose(file);
    errno = EINVAL;
    return nullptr;
  }
  return file;
}

FileId IdOf(const std::string& /*path*/) { return {1, 1}; }

std::string ComputerName() {
  std::array<char, 256> buffer{};
  DWORD size = buffer.size();
  return GetComputerNameExA(ComputerNameDnsHostname, buffer.data(), &size) != 0 && size > 0 ? buffer.data() : "unknown";
}

std::string LockerOf(const std::string& /*path*/, unsigned /*byte*/) { return "another process or thread"; }

}  // namespace Velora::System
