#include "Fingerprint.h"
#include "PosixChildren.h"

#include <VeloraSystem/ProcessLock.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <system_error>

// Locks of an open file description: other locks are lost when any descriptor of the file is closed. A lock for reading
// needs no right to write. The lock lives as long as any descriptor of this opening, so children must not have one.

namespace Velora::System {
namespace {

constexpr int asLockFile = O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
constexpr mode_t rights = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;

// The umask of one host must not keep out others that may read the store.
int Make(const std::string& file, const std::string& like) {
  struct stat status {};
  if (stat(like.c_str(), &status) != 0) {
    return -1;
  }
  const int made = open(file.c_str(), asLockFile | O_CREAT | O_EXCL, status.st_mode & rights);
  if (made < 0) {
    return errno == EEXIST ? open(file.c_str(), asLockFile) : -1;
  }
  const bool asIs =
      fchmod(made, status.st_mode & rights) == 0 && (geteuid() != 0 || fchown(made, status.st_uid, status.st_gid) == 0);
  static_cast<void>(asIs);  // who may not read it does not know
  return made;
}

int OpenOrMake(const std::string& file, const std::string& like) {
  const int opened = open(file.c_str(), asLockFile);
  return opened < 0 && errno == ENOENT ? Make(file, like) : opened;
}

// Not its name, which can change, and which two computers can have.
std::string Computer() {
  std::string id;
  for (const char* const source : {"/etc/machine-id", "/proc/sys/kernel/random/boot_id"}) {
    if (id.empty()) {
      std::getline(std::ifstream(source), id);
    }
  }
  return Fingerprint("velora " + id);
}

std::string PlaceOf(const struct stat& file) {
  static const std::string computer = Computer();
  return "computer " + computer + " file " + std::to_string(file.st_ino) + " of " +
         std::to_string(file.st_mtim.tv_sec) + '.' + std::to_string(file.st_mtim.tv_nsec);
}

flock LockOf(short kind, long long byte) {
  flock lock{};
  lock.l_type = kind;
  lock.l_whence = SEEK_SET;
  lock.l_start = byte;
  lock.l_len = 1;
  return lock;
}

bool SetLock(std::intptr_t descriptor, short kind, long long byte) {
  flock lock = LockOf(kind, byte);
  return fcntl(static_cast<int>(descriptor), F_OFD_SETLK, &lock) == 0;
}

}  // namespace

ProcessLock::ProcessLock(const std::string& file, const std::string& like, long long byte) : byte(byte) {
  const std::lock_guard forks(Children::Forking());
  Children::CloseDeleted();
  int descriptor = OpenOrMake(file, like);
  struct stat status {};
  if (descriptor < 0 || fstat(descriptor, &status) != 0) {
    return;
  }
  const FileId id{status.st_dev, status.st_ino};
  if (const int known = Children::SparedOf(id); known >= 0) {
    close(descriptor);
    descriptor = known;
  } else if (!S_ISREG(status.st_mode) || !Children::Spare(descriptor, id)) {
    close(descriptor);
    return;
  }
  if (SetLock(descriptor, F_RDLCK, byte)) {
    handle = descriptor;
    place = PlaceOf(status);
  }
}

ProcessLock::~ProcessLock() {
  if (IsHeld()) {
    SetLock(handle, F_UNLCK, byte);
  }
}

ProcessLocks::ProcessLocks(const std::string& file) : handle(open(file.c_str(), asLockFile)) {
  struct stat status {};
  if (handle < 0 || fstat(static_cast<int>(handle), &status) != 0) {
    reason = std::system_category().message(errno);
  } else if (!S_ISREG(status.st_mode)) {
    reason = "it is not a regular file";
  } else {
    place = PlaceOf(status);
  }
}

ProcessLocks::~ProcessLocks() {
  if (handle >= 0) {
    close(static_cast<int>(handle));
  }
}

std::optional<bool> ProcessLocks::IsHeld(long long byte) const {
  flock asked = LockOf(F_WRLCK, byte);
  if (fcntl(static_cast<int>(handle), F_OFD_GETLK, &asked) != 0) {
    return std::nullopt;
  }
  return asked.l_type != F_UNLCK;
}

}  // namespace Velora::System
