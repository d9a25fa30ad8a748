#include "PosixStream.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace Velora::System {

File StreamOf(int descriptor, const char* mode) {
  File file(descriptor < 0 ? nullptr : fdopen(descriptor, mode), &std::fclose);
  if (!file) {
    const int reason = errno;
    close(descriptor);
    throw Failure(std::generic_category().message(reason));
  }
  return file;
}

File OpenToRead(const std::string& path) { return StreamOf(open(path.c_str(), O_RDONLY | O_CLOEXEC), "rb"); }

File OpenRegularFile(const std::string& path) {
  File file = StreamOf(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC), "rb");
  struct stat status {};
  if (fstat(fileno(file.get()), &status) != 0 || !S_ISREG(status.st_mode)) {
    throw Failure(std::generic_category().message(EINVAL));
  }
  return file;
}

File OpenTemporary() {
  File file(std::tmpfile(), &std::fclose);
  if (!file) {
    throw Failure(std::generic_category().message(errno));
  }
  return file;
}

}  // namespace Velora::System
