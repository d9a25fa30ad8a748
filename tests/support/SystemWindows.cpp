#include "support/System.h"

#include <winsock2.h>

#include <windows.h>

#include <malloc.h>
#include <process.h>
#include <array>
#include <cstdlib>
#include <stdexcept>

namespace System {
namespace {

// As a host does that wants the computer's name recorded.
[[maybe_unused]] const int socketsStarted = [] {
  WSADATA ignored{};
  return WSAStartup(MAKEWORD(2, 2), &ignored);
}();

template <typename Pointer>
void* OrRaise(Pointer found) {
  return found != nullptr ? reinterpret_cast<void*>(found)
                          : throw std::runtime_error("error " + std::to_string(GetLastError()));
}

}  // namespace

void* Load(const std::filesystem::path& file) { return OrRaise(LoadLibraryW(file.c_str())); }
void* Find(void* library, const char* name) { return OrRaise(GetProcAddress(static_cast<HMODULE>(library), name)); }
void Unload(void* library) { FreeLibrary(static_cast<HMODULE>(library)); }
bool IsLoaded(const std::filesystem::path& file) { return GetModuleHandleW(file.c_str()) != nullptr; }

void SetVariable(const char* name, const std::string& value) { _putenv_s(name, value.c_str()); }

bool SetZone(const std::string& zone) {
  const char* const first = std::getenv("TZ");
  return first != nullptr && zone == first;
}

std::string HostName() {
  std::array<char, 128> name{};
  DWORD size = name.size();
  GetComputerNameExA(ComputerNameDnsHostname, name.data(), &size);
  return name.data();
}

bool GiveUpRights() { return false; }
void TakeRightsBack() {}

std::intptr_t StartCase(const std::string& name) {
  return _spawnl(_P_NOWAIT, _pgmptr, "test", ("--gtest_filter=" + name).c_str(), nullptr);
}

int ExitCodeOf(std::intptr_t process) {
  int code = -1;
  return _cwait(&code, process, 0) == process ? code : -1;
}

std::size_t MemoryInUse() {
  std::size_t used = 0;
  _HEAPINFO block{};
  while (_heapwalk(&block) == _HEAPOK) {
    used += block._useflag == _USEDENTRY ? block._size : 0;
  }
  return used;
}

}  // namespace System
