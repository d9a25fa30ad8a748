// Preloaded into a program, it sends the program a signal before one of the calls that change files, or lets the call
// fail as on a full disk. STOP_AT is the number of the call or its name, STOP_BY the signal, or 0.

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

/// Whether the call is to fail.
bool IsFailing(const char* name) {
  static const char* const at = std::getenv("STOP_AT");
  static const char* const by = std::getenv("STOP_BY");
  static int calls = 0;
  if (at == nullptr || by == nullptr || (std::to_string(++calls) != at && std::strcmp(name, at) != 0)) {
    return false;
  }
  const std::string told = "stopped at " + std::string(name) + '\n';
  static_cast<void>(write(STDERR_FILENO, told.data(), told.size()));
  const int signal = std::stoi(by);
  if (signal != 0) {
    static_cast<void>(std::raise(signal));
    return false;
  }
  errno = ENOSPC;
  return true;
}

template <typename Result = int, typename... Arguments>
Result Call(const char* name, Arguments... arguments) {
  using Function = Result (*)(Arguments...);
  return IsFailing(name) ? -1 : reinterpret_cast<Function>(dlsym(RTLD_NEXT, name))(arguments...);
}

}  // namespace

extern "C" {

int link(const char* from, const char* to) { return Call("link", from, to); }
int rename(const char* from, const char* to) { return Call("rename", from, to); }
int unlink(const char* path) { return Call("unlink", path); }
int chmod(const char* path, mode_t mode) { return Call("chmod", path, mode); }
int fsync(int file) { return Call("fsync", file); }
int fdatasync(int file) { return Call("fdatasync", file); }
int ftruncate64(int file, off64_t size) { return Call("ftruncate64", file, size); }
ssize_t pwrite64(int file, const void* bytes, size_t count, off64_t at) {
  return Call<ssize_t>("pwrite64", file, bytes, count, at);
}
}
