#include <VeloraSystem/Sockets.h>
#include <VeloraSystem/System.h>

#include <winsock2.h>  // before windows.h
#include <ws2tcpip.h>

#include "WindowsOpen.h"
#include "WindowsPath.h"
#include "WindowsText.h"

#include <array>
#include <memory>
#include <stdexcept>
#include <string>

namespace Velora::System {

void MakeOwnFile(const std::string& /*path*/) {}

FileId IdOf(const std::string& path) {
  const HANDLE opened =
      CreateFileW(WholePath(Wide(path)).c_str(), FILE_READ_ATTRIBUTES, shareAll, nullptr, OPEN_EXISTING, 0, nullptr);
  BY_HANDLE_FILE_INFORMATION file{};
  const bool known = GetFileInformationByHandle(opened, &file) != 0;
  if (opened != INVALID_HANDLE_VALUE) {
    CloseHandle(opened);
  }
  return known ? FileId{file.dwVolumeSerialNumber, std::uint64_t{file.nFileIndexHigh} << 32U | file.nFileIndexLow}
               : FileId{};
}

FileId IdOfOpen(const std::string& /*path*/) { return {1, 1}; }

// Only the attempt tells: rights are those of lists, groups and shares.
bool TakesNewFiles(const std::string& folder) {
  const std::string file = folder + "\\velora-" + std::to_string(GetCurrentProcessId()) + ".tmp";
  const HANDLE made = CreateFileW(WholePath(Wide(file)).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                  FILE_FLAG_DELETE_ON_CLOSE, nullptr);
  return made != INVALID_HANDLE_VALUE && CloseHandle(made) != 0;
}

std::string ProgramFolder() {
  std::wstring path(32768, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return Utf8(path.substr(0, path.find_last_of(L'\\') + 1));
}

long ProcessNumber() { return static_cast<long>(GetCurrentProcessId()); }

std::string ComputerName() {
  std::array<wchar_t, 256> buffer{};
  DWORD size = buffer.size();
  return GetComputerNameExW(ComputerNameDnsHostname, buffer.data(), &size) != 0 && size > 0 ? Utf8(buffer.data())
                                                                                            : "unknown";
}

std::string UserName() {
  std::array<wchar_t, 257> buffer{};
  DWORD size = buffer.size();
  return GetUserNameW(buffer.data(), &size) != 0 && buffer[0] != L'\0' ? Utf8(buffer.data()) : "unknown";
}

std::string LockerOf(const std::string& /*path*/, unsigned /*byte*/) { return "another process or thread"; }

std::vector<std::string> AddressesOf(const std::string& host) {
  addrinfo wanted{};
  wanted.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  std::vector<std::string> addresses;
  if (const int error = getaddrinfo(host.c_str(), nullptr, &wanted, &found); error != 0) {
    throw std::runtime_error(gai_strerrorA(error));
  }
  const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> owned(found, &freeaddrinfo);
  for (const addrinfo* one = found; one != nullptr; one = one->ai_next) {
    std::array<char, 64> text{};
    if (getnameinfo(one->ai_addr, static_cast<socklen_t>(one->ai_addrlen), text.data(), static_cast<DWORD>(text.size()),
                    nullptr, 0, NI_NUMERICHOST) == 0) {
      addresses.emplace_back(text.data());
    }
  }
  return addresses;
}

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
