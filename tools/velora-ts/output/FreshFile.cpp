#include "output/FreshFile.h"

#include "store/Error.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <random>
#include <system_error>
#include <utility>

namespace Velora::Ts {

using namespace Store;

namespace {

std::string RandomDigits() {
  std::random_device random;
  std::array<char, 17> digits{};
  static_cast<void>(std::snprintf(digits.data(), digits.size(), "%08x%08x", random(), random()));
  return digits.data();
}

// Without this, a loss of power could undo the new name. File systems that do not need it answer EINVAL.
bool SyncFolderOf(const std::string& path) {
  const std::string folder = std::filesystem::path(path).parent_path();
  const int opened = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  const bool synced = opened >= 0 && (fsync(opened) == 0 || errno == EINVAL);
  const int reason = errno;
  close(opened);
  errno = reason;
  return synced;
}

}  // namespace

FreshFile::FreshFile(std::string name, mode_t mode)
    : target(std::move(name)), path(target + '.' + RandomDigits() + ".part") {
  file = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
  if (file < 0) {
    Fail();
  }
}

FreshFile::~FreshFile() {
  close(file);
  if (!path.empty()) {
    unlink(path.c_str());
  }
}

void FreshFile::Write(const std::string& content) const {
  for (std::size_t written = 0; written < content.size();) {
    const ssize_t more = write(file, content.data() + written, content.size() - written);
    if (more < 0) {
      Fail();
    }
    written += static_cast<std::size_t>(more);
  }
}

void FreshFile::TakeName(Existing existing) {
  if (fsync(file) != 0 || !Rename(existing)) {
    Fail();
  }
  path.clear();
  if (!SyncFolderOf(target)) {
    Fail();
  }
}

bool FreshFile::Rename(Existing existing) const {
  if (existing == Existing::Replace) {
    return std::rename(path.c_str(), target.c_str()) == 0;
  }
  if (renameat2(AT_FDCWD, path.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0) {
    return true;
  }
  // Some file systems do not support RENAME_NOREPLACE; there the file gets a second name first.
  return errno == EINVAL && link(path.c_str(), target.c_str()) == 0 && unlink(path.c_str()) == 0;
}

void FreshFile::Fail() const {
  throw Store::Error("file '" + target + "' cannot be written: " + std::system_category().message(errno));
}

}  // namespace Velora::Ts
