#include <VeloraSystem/RegularFile.h>
#include <VeloraSystem/Sockets.h>
#include <VeloraSystem/System.h>

#include <winsock2.h>  // before windows.h

#include <io.h>
#include <windows.h>

#include <array>
#include <cerrno>
#include <string>

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

// Only the attempt tells: rights are those of lists, groups and shares.
bool TakesNewFiles(const std::string& folder) {
  const std::string file = folder + "\\velora-" + std::to_string(GetCurrentProcessId()) + ".tmp";
  const HANDLE made =
      CreateFileA(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_FLAG_DELETE_ON_CLOSE, nullptr);
  return made != INVALID_HANDLE_VALUE && CloseHandle(made) != 0;
}

std::string ProgramFolder() {
  std::string path(32768, '\0');
  path.resize(GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return path.substr(0, path.find_last_of('\\') + 1);
}

long ProcessNumber() { return static_cast<long>(GetCurrentProcessId()); }

std::string ComputerName() {
  std::array<char, 256> buffer{};
  DWORD size = buffer.size();
  return GetComputerNameExA(ComputerNameDnsHostname, buffer.data(), &size) != 0 && size > 0 ? buffer.data() : "unknown";
}

std::string UserName() {
  std::array<char, 257> buffer{};
  DWORD size = buffer.size();
  return GetUserNameA(buffer.data(), &size) != 0 && buffer[0] != '\0' ? buffer.data() : "unknown";
}

std::string LockerOf(const std::string& /*path*/, unsigned /*byte*/) { return "another process or thread"; }

void ShutDownSocket(int socket) { shutdown(static_cast<SOCKET>(socket), SD_BOTH); }

bool AwaitSocket(int socket, bool toWrite, std::chrono::milliseconds longest) {
  fd_set awaited;
  FD_ZERO(&awaited);
  FD_SET(static_cast<SOCKET>(socket), &awaited);
  fd_set failed = awaited;
  timeval time{static_cast<long>(longest.count() / 1000), static_cast<long>(longest.count() % 1000 * 1000)};
  return select(0, toWrite ? nullptr : &awaited, toWrite ? &awaited : nullptr, &failed, &time) > 0;
}

}  // namespace Velora::System
