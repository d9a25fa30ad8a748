#include "PosixChildren.h"

#include <VeloraSystem/Sockets.h>

#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>

namespace Velora::System::Children {
namespace {

struct Spared {
  int descriptor = -1;
  FileId file;
};

// Neither is destroyed while the process ends: it can still fork then.
std::mutex mutex;
std::array<Spared, 256> spared;  // guarded by mutex

void CloseInChild() {
  for (Spared& one : spared) {
    if (one.descriptor >= 0) {
      close(one.descriptor);
      one = {};
    }
  }
  mutex.unlock();
}

Spared* Find(int descriptor) {
  const auto found = std::find_if(spared.begin(), spared.end(),
                                  [descriptor](const Spared& one) { return one.descriptor == descriptor; });
  return found == spared.end() ? nullptr : &*found;
}

}  // namespace

std::mutex& Forking() {
  static const int registered = pthread_atfork([] { mutex.lock(); }, [] { mutex.unlock(); }, CloseInChild);
  static_cast<void>(registered);
  return mutex;
}

bool Spare(int descriptor, const FileId& file) {
  Spared* const room = Find(-1);
  if (room != nullptr) {
    fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    *room = {descriptor, file};
  }
  return room != nullptr;
}

int SparedOf(const FileId& file) {
  const auto found =
      std::find_if(spared.begin(), spared.end(), [&file](const Spared& one) { return one.file == file; });
  return found == spared.end() ? -1 : found->descriptor;
}

void CloseDeleted() {
  for (Spared& one : spared) {
    struct stat status {};
    if (one.file != FileId() && fstat(one.descriptor, &status) == 0 && status.st_nlink == 0) {
      close(one.descriptor);
      one = {};
    }
  }
}

}  // namespace Velora::System::Children

namespace Velora::System {

bool KeepFromChildren(int socket) {
  const std::lock_guard lock(Children::Forking());
  return Children::Spare(socket);
}

void ForgetSocket(int socket) {
  const std::lock_guard lock(Children::Forking());
  if (Children::Spared* const found = Children::Find(socket)) {
    *found = {};
  }
}

}  // namespace Velora::System
