#include "Fingerprint.h"
#include "WindowsOpen.h"
#include "WindowsPath.h"
#include "WindowsReason.h"
#include "WindowsText.h"

#include <VeloraSystem/ProcessLock.h>
#include <VeloraSystem/Sockets.h>

#include <algorithm>
#include <array>
#include <mutex>

// Handles that children do not inherit. The host's lock is exclusive and that of a reader is shared, so that readers do
// not see one another.

namespace Velora::System {
namespace {

struct LockFile {
  HANDLE handle = INVALID_HANDLE_VALUE;
  std::string place;
};

std::mutex mutex;
std::array<LockFile, 256> lockFiles;  // guarded by mutex

HANDLE OpenLockFile(const std::string& file, DWORD disposition) {
  return CreateFileW(WholePath(Wide(file)).c_str(), GENERIC_READ, shareAll, nullptr, disposition, FILE_ATTRIBUTE_NORMAL,
                     nullptr);
}

std::string Computer() {
  std::array<char, 64> id{};
  DWORD size = id.size() - 1;
  RegGetValueA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Microsoft\\Cryptography", "MachineGuid",
               RRF_RT_REG_SZ | RRF_SUBKEY_WOW6464KEY, nullptr, id.data(), &size);
  return Fingerprint(std::string("velora ") + id.data());
}

std::string PlaceOf(const BY_HANDLE_FILE_INFORMATION& file) {
  const auto both = [](DWORD high, DWORD low) { return std::to_string(std::uint64_t{high} << 32U | low); };
  return "computer " + Computer() + " file " + both(file.nFileIndexHigh, file.nFileIndexLow) + " of " +
         both(file.ftLastWriteTime.dwHighDateTime, file.ftLastWriteTime.dwLowDateTime);
}

OVERLAPPED At(long long byte) {
  OVERLAPPED place{};
  place.Offset = static_cast<DWORD>(byte);
  place.OffsetHigh = static_cast<DWORD>(byte >> 32U);
  return place;
}

bool Lock(HANDLE handle, DWORD how, long long byte) {
  OVERLAPPED place = At(byte);
  return LockFileEx(handle, how | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &place) != 0;
}

void Unlock(HANDLE handle, long long byte) {
  OVERLAPPED place = At(byte);
  UnlockFileEx(handle, 0, 1, 0, &place);
}

HANDLE HandleOf(std::intptr_t handle) { return reinterpret_cast<HANDLE>(handle); }

void CloseDeleted() {
  for (LockFile& one : lockFiles) {
    FILE_STANDARD_INFO file{};
    if (one.handle != INVALID_HANDLE_VALUE &&
        GetFileInformationByHandleEx(one.handle, FileStandardInfo, &file, sizeof file) != 0 &&
        (file.DeletePending != 0 || file.NumberOfLinks == 0)) {
      CloseHandle(one.handle);
      one = {};
    }
  }
}

}  // namespace

ProcessLock::ProcessLock(const std::string& file, const std::string& /*like*/, long long byte) : byte(byte) {
  const std::lock_guard lock(mutex);
  CloseDeleted();
  HANDLE opened = OpenLockFile(file, OPEN_ALWAYS);
  BY_HANDLE_FILE_INFORMATION status{};
  if (opened == INVALID_HANDLE_VALUE) {
    return;
  }
  if (GetFileInformationByHandle(opened, &status) == 0) {
    CloseHandle(opened);
    return;
  }
  const std::string found = PlaceOf(status);
  const auto named = [](const std::string& name) {
    return std::find_if(lockFiles.begin(), lockFiles.end(), [&name](const LockFile& one) { return one.place == name; });
  };
  if (const auto known = named(found); known != lockFiles.end()) {
    CloseHandle(opened);
    opened = known->handle;
  } else if (const auto room = named(""); room != lockFiles.end()) {
    *room = {opened, found};
  } else {
    CloseHandle(opened);
    return;
  }
  if (Lock(opened, LOCKFILE_EXCLUSIVE_LOCK, byte)) {
    handle = reinterpret_cast<std::intptr_t>(opened);
    place = found;
  }
}

ProcessLock::~ProcessLock() {
  if (IsHeld()) {
    Unlock(HandleOf(handle), byte);
  }
}

ProcessLocks::ProcessLocks(const std::string& file)
    : handle(reinterpret_cast<std::intptr_t>(OpenLockFile(file, OPEN_EXISTING))) {
  BY_HANDLE_FILE_INFORMATION status{};
  if (HandleOf(handle) == INVALID_HANDLE_VALUE || GetFileInformationByHandle(HandleOf(handle), &status) == 0) {
    reason = LastReason();
  } else {
    place = PlaceOf(status);
  }
}

ProcessLocks::~ProcessLocks() {
  if (HandleOf(handle) != INVALID_HANDLE_VALUE) {
    CloseHandle(HandleOf(handle));
  }
}

std::optional<bool> ProcessLocks::IsHeld(long long byte) const {
  if (Lock(HandleOf(handle), 0, byte)) {
    Unlock(HandleOf(handle), byte);
    return false;
  }
  return GetLastError() == ERROR_LOCK_VIOLATION ? std::optional(true) : std::nullopt;
}

bool KeepFromChildren(int socket) {
  return SetHandleInformation(reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(socket)), HANDLE_FLAG_INHERIT, 0) !=
         0;
}

void ForgetSocket(int /*socket*/) {}

}  // namespace Velora::System
