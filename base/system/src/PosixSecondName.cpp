#include "PosixFolder.h"
#include "PosixStream.h"

#include <VeloraSystem/SecondName.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace Velora::System {
namespace {

constexpr mode_t rights = 07777;
constexpr mode_t toWrite = S_IWUSR | S_IWGRP | S_IWOTH;

void Expect(bool good) {
  if (!good) {
    throw Failure(std::generic_category().message(errno));
  }
}

struct stat StatusOf(const std::string& file) {
  struct stat status {};
  Expect(stat(file.c_str(), &status) == 0);
  return status;
}

}  // namespace

SecondName::SecondName(std::string file, std::string name) : file(std::move(file)), name(std::move(name)) {
  Expect(link(this->file.c_str(), this->name.c_str()) == 0);
  if (!SyncFolderOf(this->name)) {
    const int reason = errno;
    unlink(this->name.c_str());
    throw Failure(std::generic_category().message(reason));
  }
}

bool OpenFilesGiveUpNames() { return true; }

void MakeLike(const std::string& file, const std::string& other) {
  const struct stat from = StatusOf(other), to = StatusOf(file);
  Expect((from.st_uid == to.st_uid && from.st_gid == to.st_gid) || chown(file.c_str(), from.st_uid, from.st_gid) == 0);
  Expect(chmod(file.c_str(), from.st_mode & rights) == 0);
}

void MakeReadOnly(const std::string& file) {
  Expect(chmod(file.c_str(), StatusOf(file).st_mode & rights & ~toWrite) == 0);
  const File opened = OpenToRead(file);
  Expect(fsync(fileno(opened.get())) == 0);
}

}  // namespace Velora::System
