#include "Fingerprint.h"
#include "WindowsText.h"

#include <VeloraSystem/Turn.h>

#include <windows.h>

#include <algorithm>

// A mutex with the file's name: the system hands it over in the order in which threads came, and takes it from a
// process that ended.

namespace Velora::System {

namespace {

// A path that is too long for a name is named by its fingerprint.
std::wstring NameOfQueue(const std::string& file) {
  std::wstring path = Wide(file);
  if (path.size() > 200) {
    path = Wide(Fingerprint(file));
  }
  std::replace(path.begin(), path.end(), L'\\', L'/');
  return L"Global\\Velora TS " + path;
}

}  // namespace

Turn::Turn(const std::string& file, std::chrono::milliseconds longest) {
  const HANDLE mutex = CreateMutexW(nullptr, FALSE, NameOfQueue(file).c_str());
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
