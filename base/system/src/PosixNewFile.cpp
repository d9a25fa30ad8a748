#include "PosixFolder.h"
#include "PosixStream.h"

#include <VeloraSystem/NewFile.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

namespace Velora::System {
namespace {

void Expect(bool good) {
  if (!good) {
    throw Failure(std::generic_category().message(errno));
  }
}

// Some file systems do not support RENAME_NOREPLACE; there the file gets a second name first.
bool MoveToFreeName(const char* path, const char* name) {
  return renameat2(AT_FDCWD, path, AT_FDCWD, name, RENAME_NOREPLACE) == 0 ||
         (errno == EINVAL && link(path, name) == 0 && unlink(path) == 0);
}

}  // namespace

bool SyncFolderOf(const std::string& path) {
  const std::string folder = std::filesystem::path(path).parent_path();
  const int opened = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  const bool synced = opened >= 0 && (fsync(opened) == 0 || errno == EINVAL);
  const int reason = errno;
  close(opened);
  errno = reason;
  return synced;
}

File NewFile::Make(const std::string& path, unsigned mode) {
  return StreamOf(open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode), "w+b");
}

void NewFile::Sync(std::FILE* file) { Expect(fsync(fileno(file)) == 0); }

void NewFile::Move(const std::string& path, const std::string& name, Existing existing) {
  Expect(existing == Existing::Replace ? rename(path.c_str(), name.c_str()) == 0
                                       : MoveToFreeName(path.c_str(), name.c_str()));
  Expect(SyncFolderOf(name));
}

void NewFile::Remove(const std::string& path) { unlink(path.c_str()); }

}  // namespace Velora::System
