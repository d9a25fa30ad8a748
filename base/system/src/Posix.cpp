#include <VeloraSystem/Sockets.h>
#include <VeloraSystem/System.h>

#include <fcntl.h>
#include <netdb.h>
#include <poll.h>
#include <pwd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <system_error>

namespace Velora::System {
namespace {

// From the system's table of locks. A lock must not be asked for here: closing the file afterwards would give up all
// locks that this process has on it.
long LockingProcess(const std::string& path, unsigned byte) {
  struct stat file {};
  if (stat(path.c_str(), &file) != 0) {
    return 0;
  }
  // "1: POSIX  ADVISORY  WRITE 4711 fe:01:131072 120 120"; blocked ones have an arrow behind the number
  const std::string inode = ':' + std::to_string(file.st_ino);
  std::ifstream table("/proc/locks");
  for (std::string line; std::getline(table, line);) {
    std::istringstream words(line);
    std::string number, kind, force, access, where, first;
    long process = 0;
    if (words >> number >> kind >> force >> access >> process >> where >> first && access == "WRITE" &&
        first == std::to_string(byte) && where.ends_with(inode)) {
      return process;
    }
  }
  return 0;
}

}  // namespace

void MakeOwnFile(const std::string& path) { mknod(path.c_str(), S_IFREG | S_IRUSR | S_IWUSR | S_IRGRP, 0); }

FileId IdOf(const std::string& path) {
  struct stat file {};
  return stat(path.c_str(), &file) == 0 ? FileId{file.st_dev, file.st_ino} : FileId{};
}

FileId IdOfOpen(const std::string& path) { return IdOf(path); }

bool TakesNewFiles(const std::string& folder) {
  return faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
}

std::string ProgramFolder() {
  std::error_code unknown;
  return std::filesystem::read_symlink("/proc/self/exe", unknown).parent_path();
}

long ProcessNumber() { return getpid(); }

std::string ComputerName() {
  std::array<char, 257> buffer{};
  return gethostname(buffer.data(), buffer.size() - 1) == 0 && buffer[0] != '\0' ? buffer.data() : "unknown";
}

std::string UserName() {
  const passwd* const user = getpwuid(geteuid());
  return user != nullptr && *user->pw_name != '\0' ? user->pw_name : "unknown";
}

std::string LockerOf(const std::string& path, unsigned byte) {
  const long process = LockingProcess(path, byte);
  if (process <= 0) {
    return "another process or thread";
  }
  if (process == getpid()) {
    return "another thread of this process";
  }
  std::string name;
  std::getline(std::ifstream("/proc/" + std::to_string(process) + "/comm"), name);
  return "process " + std::to_string(process) + (name.empty() ? "" : " (" + name + ')');
}

std::vector<std::string> AddressesOf(const std::string& host) {
  addrinfo wanted{};
  wanted.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  std::vector<std::string> addresses;
  if (const int error = getaddrinfo(host.c_str(), nullptr, &wanted, &found); error != 0) {
    throw std::runtime_error(gai_strerror(error));
  }
  const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> owned(found, &freeaddrinfo);
  for (const addrinfo* one = found; one != nullptr; one = one->ai_next) {
    std::array<char, 64> text{};
    if (getnameinfo(one->ai_addr, one->ai_addrlen, text.data(), text.size(), nullptr, 0, NI_NUMERICHOST) == 0) {
      addresses.emplace_back(text.data());
    }
  }
  return addresses;
}

void ShutDownSocket(int socket) { shutdown(socket, SHUT_RDWR); }

bool AwaitSocket(int socket, bool toWrite, std::chrono::milliseconds longest) {
  pollfd awaited{socket, static_cast<short>(toWrite ? POLLOUT : POLLIN), 0};
  return poll(&awaited, 1, static_cast<int>(longest.count())) > 0;
}

}  // namespace Velora::System
