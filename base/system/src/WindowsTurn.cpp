#include <VeloraSystem/Turn.h>

#include <windows.h>

#include <algorithm>

// A mutex with the file's name: the system hands it over in the order in which threads came, and takes it from a
// process that ended.

namespace Velora::System {

// A path that is too long for a name has no queue.
Turn::Turn(const std::string& file, std::chrono::milliseconds longest) {
  std::string name = "Global\\Velora TS " + file;
  std::replace(name.begin() + 7, name.end(), '\\', '/');
  const HANDLE mutex = CreateMutexA(nullptr, FALSE, name.c_str());
  if (mutex == nullptr) {
    return;
  }
  queue = reinterpret_cast<std::intptr_t>(mutex);
  const DWORD result = WaitForSingleObject(mutex, static_cast<DWORD>(longest.count()));
  ours = result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
}

Turn::~Turn() {
  const HANDLE mutex = reinterpret_cast<HANDLE>(queue);
  if (ours) {
    ReleaseMutex(mutex);
  }
  if (mutex != nullptr) {
    CloseHandle(mutex);
  }
}

}  // namespace Velora::System
