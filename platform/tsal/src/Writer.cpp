#include "Writer.h"

#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

namespace Quor::TolvaServices::Local {
namespace {

// The byte of the file of shared memory that SQLite locks for the one writer of its write-ahead log.
constexpr const char* writeLock = "120";

// From the system's table of locks. A lock must not be asked for here: closing the file afterwards would give up all
// locks that this process has on it.
long LockingProcess(const std::string& sharedMemory) {
  struct stat file {};
  if (stat(sharedMemory.c_str(), &file) != 0) {
    return 0;
  }
  // "1: POSIX  ADVISORY  WRITE 4711 fe:01:131072 120 120"; blocked ones have an arrow behind the number
  const std::string inode = ':' + std::to_string(file.st_ino);
  std::ifstream table("/proc/locks");
  for (std::string line; std::getline(table, line);) {
    std::istringstream words(line);
    std::string number, kind, force, access, where, first;
    long process = 0;
    if (words >> number >> kind >> force >> access >> process >> where >> first && access == "WRITE" &&
        first == writeLock && where.ends_with(inode)) {
      return process;
    }
  }
  return 0;
}

}  // namespace

std::string WriterOf(const std::string& database) {
  const long process = LockingProcess(database + "-shm");
  if (process <= 0) {
    return "another process or thread";
  }
  if (process == getpid()) {
    return "another thread of this process";
  }
  std::string name;
  std::getline(std::ifstream("/proc/" + std::to_string(process) + "/comm"), name);
  return "process " + std::to_string(process) + (name.empty() ? "" : " (" + name + ')');
}

}  // namespace Quor::TolvaServices::Local
