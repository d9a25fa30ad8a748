#include "support/System.h"

#include <dlfcn.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <ctime>
#include <stdexcept>

namespace System {
namespace {

void* OrRaise(void* found) { return found != nullptr ? found : throw std::runtime_error(dlerror()); }

}  // namespace

void* Load(const std::filesystem::path& file) { return OrRaise(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)); }
void* Find(void* library, const char* name) { return OrRaise(dlsym(library, name)); }
void Unload(void* library) { dlclose(library); }

bool IsLoaded(const std::filesystem::path& file) {
  void* const loaded = dlopen(file.c_str(), RTLD_NOW | RTLD_NOLOAD);
  return loaded != nullptr && dlclose(loaded) == 0;
}

void SetVariable(const char* name, const std::string& value) { setenv(name, value.c_str(), 1); }

bool SetZone(const std::string& zone) {
  SetVariable("TZ", zone);
  tzset();
  return true;
}

std::string HostName() {
  std::array<char, 128> name{};
  gethostname(name.data(), name.size());
  return name.data();
}

bool GiveUpRights() { return geteuid() != 0 || seteuid(65534) == 0; }
void TakeRightsBack() { static_cast<void>(seteuid(getuid())); }

std::intptr_t StartCase(const std::string& name) {
  const std::string filter = "--gtest_filter=" + name;
  const pid_t process = fork();
  if (process == 0) {
    execl("/proc/self/exe", "test", filter.c_str(), nullptr);
    _exit(127);
  }
  return process;
}

int ExitCodeOf(std::intptr_t process) {
  int status = -1;
  const bool exited = waitpid(static_cast<pid_t>(process), &status, 0) == process && WIFEXITED(status);
  return exited ? WEXITSTATUS(status) : -1;
}

std::size_t MemoryInUse() { return mallinfo2().uordblks; }

}  // namespace System
