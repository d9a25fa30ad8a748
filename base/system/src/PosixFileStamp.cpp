#include <VeloraSystem/FileStamp.h>

#include <sys/stat.h>

namespace Velora::System {

FileStamp StampOf(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) {
    return {};
  }
  constexpr std::uint64_t nanoseconds = 1'000'000'000;
  return {status.st_ino, static_cast<std::uint64_t>(status.st_size),
          static_cast<std::uint64_t>(status.st_mtim.tv_sec) * nanoseconds +
              static_cast<std::uint64_t>(status.st_mtim.tv_nsec)};
}

}  // namespace Velora::System
