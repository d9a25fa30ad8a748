#include "FaultyFiles.h"

#include "support/ScratchFolder.h"

#include <sqlite3.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <chrono>
#include <ctime>
#include <new>
#include <utility>

namespace {

FaultyFiles* current = nullptr;
sqlite3_vfs* real = nullptr;
std::chrono::nanoseconds slept{0};

// An open file; the real one lies behind it, in memory that SQLite gives.
struct File : sqlite3_file {
  const char* path;  // SQLite's, which outlives the file; null for one without a name
};

sqlite3_file* Real(sqlite3_file* file) { return reinterpret_cast<sqlite3_file*>(static_cast<File*>(file) + 1); }
std::string PathOf(sqlite3_file* file) {
  const char* const path = static_cast<File*>(file)->path;
  return path == nullptr ? "" : path;
}

// Files that are still open when the test is over, as those of TSAL's session are, meet nothing any more.
int Meet(Call call) { return current == nullptr ? SQLITE_OK : current->Meet(call); }

// A call that may fail in the place of the real one.
template <Call call, auto method, typename... Arguments>
int Pass(sqlite3_file* file, Arguments... arguments) {
  const int failure = Meet(call);
  return failure != SQLITE_OK ? failure : (Real(file)->pMethods->*method)(Real(file), arguments...);
}

// A call that gives something back, which is done whatever it answers: else the process would keep it forever.
template <Call call, auto method, typename... Arguments>
int GiveBack(sqlite3_file* file, Arguments... arguments) {
  const int failure = Meet(call);
  const int result = (Real(file)->pMethods->*method)(Real(file), arguments...);
  return failure != SQLITE_OK ? failure : result;
}

template <auto method, typename... Arguments>
auto Plain(sqlite3_file* file, Arguments... arguments) {
  return (Real(file)->pMethods->*method)(Real(file), arguments...);
}

int Write(sqlite3_file* file, const void* data, int size, sqlite3_int64 offset) {
  const int failure = Meet(Call::Write);
  const int written = failure == SQLITE_OK ? size : current->FailsHalf() ? size / 2 : 0;
  const int result = written == 0 ? SQLITE_OK : Real(file)->pMethods->xWrite(Real(file), data, written, offset);
  return failure != SQLITE_OK ? failure : result;
}

int Sync(sqlite3_file* file, int /*flags*/) {
  const int failure = Meet(Call::Sync);
  if (failure == SQLITE_OK && current != nullptr) {
    current->beforeSync();
    if (const std::string path = PathOf(file); current->syncs(path)) {
      current->Keep(path);
    }
  }
  return failure;
}

int LockShared(sqlite3_file* file, int offset, int count, int flags) {
  return (flags & SQLITE_SHM_UNLOCK) != 0
             ? GiveBack<Call::LockShared, &sqlite3_io_methods::xShmLock>(file, offset, count, flags)
             : Pass<Call::LockShared, &sqlite3_io_methods::xShmLock>(file, offset, count, flags);
}

// Version 2: with shared memory, without mapping the database itself, so that every read of it is a call.
const sqlite3_io_methods methods = {
    2,
    GiveBack<Call::Close, &sqlite3_io_methods::xClose>,
    Pass<Call::Read, &sqlite3_io_methods::xRead>,
    Write,
    Pass<Call::Truncate, &sqlite3_io_methods::xTruncate>,
    Sync,
    Pass<Call::FileSize, &sqlite3_io_methods::xFileSize>,
    Pass<Call::Lock, &sqlite3_io_methods::xLock>,
    GiveBack<Call::Unlock, &sqlite3_io_methods::xUnlock>,
    Plain<&sqlite3_io_methods::xCheckReservedLock>,
    Plain<&sqlite3_io_methods::xFileControl>,
    Plain<&sqlite3_io_methods::xSectorSize>,
    Plain<&sqlite3_io_methods::xDeviceCharacteristics>,
    Pass<Call::MapShared, &sqlite3_io_methods::xShmMap>,
    LockShared,
    Plain<&sqlite3_io_methods::xShmBarrier>,
    GiveBack<Call::UnmapShared, &sqlite3_io_methods::xShmUnmap>,
    nullptr,
    nullptr,
};

int Open(sqlite3_vfs* /*vfs*/, const char* path, sqlite3_file* place, int flags, int* outFlags) {
  File* const file = new (place) File{};
  const int failure = Meet(Call::Open);
  if (failure != SQLITE_OK) {
    return failure;
  }
  file->path = path;
  const int result = real->xOpen(real, path, Real(file), flags, outFlags);
  file->pMethods = Real(file)->pMethods == nullptr ? nullptr : &methods;
  return result;
}

int Delete(sqlite3_vfs* /*vfs*/, const char* path, int syncFolder) {
  if (const int failure = Meet(Call::Delete); failure != SQLITE_OK) {
    return failure;
  }
  if (current != nullptr) {
    current->NoteDeletion(path, syncFolder != 0);
  }
  return real->xDelete(real, path, 0);
}

int Access(sqlite3_vfs* /*vfs*/, const char* path, int flags, int* answer) {
  const int failure = Meet(Call::Access);
  return failure != SQLITE_OK ? failure : real->xAccess(real, path, flags, answer);
}

int FullPath(sqlite3_vfs* /*vfs*/, const char* path, int size, char* full) {
  const int failure = Meet(Call::FullPath);
  return failure != SQLITE_OK ? failure : real->xFullPathname(real, path, size, full);
}

int Sleep(sqlite3_vfs* /*vfs*/, int microseconds) {
  slept += std::chrono::microseconds(microseconds) * 5 / 4;
  if (current != nullptr) {
    current->afterSleep();
  }
  return microseconds;
}

sqlite3_vfs faulty{};

}  // namespace

// Stands in the place of the system's.
extern "C" [[gnu::visibility("default")]] int clock_gettime(clockid_t clock, timespec* time) noexcept {
  const int result = static_cast<int>(syscall(SYS_clock_gettime, clock, time));
  if (result == 0 && clock == CLOCK_MONOTONIC) {
    const std::chrono::nanoseconds more = slept + std::chrono::nanoseconds(time->tv_nsec);
    time->tv_sec += more / std::chrono::seconds(1);
    time->tv_nsec = (more % std::chrono::seconds(1)).count();
  }
  return result;
}

const std::vector<FaultKind>& FaultyFiles::Kinds() {
  static const std::vector<FaultKind> kinds = {
      {"Open", Call::Open, SQLITE_CANTOPEN},
      {"Delete", Call::Delete, SQLITE_IOERR_DELETE},
      {"Access", Call::Access, SQLITE_IOERR_ACCESS},
      {"FullPath", Call::FullPath, SQLITE_CANTOPEN},
      {"Close", Call::Close, SQLITE_IOERR_CLOSE},
      {"Read", Call::Read, SQLITE_IOERR_READ},
      {"Write", Call::Write, SQLITE_IOERR_WRITE},
      {"WriteHalfOnFullDisk", Call::Write, SQLITE_FULL, true},
      {"Truncate", Call::Truncate, SQLITE_IOERR_TRUNCATE},
      {"Sync", Call::Sync, SQLITE_IOERR_FSYNC},
      {"FileSize", Call::FileSize, SQLITE_IOERR_FSTAT},
      {"Lock", Call::Lock, SQLITE_IOERR_LOCK},
      {"BusyLock", Call::Lock, SQLITE_BUSY, false, true},
      {"Unlock", Call::Unlock, SQLITE_IOERR_UNLOCK},
      {"MapShared", Call::MapShared, SQLITE_IOERR_SHMMAP},
      {"NoMemoryToMap", Call::MapShared, SQLITE_NOMEM},
      {"LockShared", Call::LockShared, SQLITE_IOERR_SHMLOCK},
      {"BusyLockShared", Call::LockShared, SQLITE_BUSY, false, true},
      {"UnmapShared", Call::UnmapShared, SQLITE_IOERR_SHMMAP},
  };
  return kinds;
}

FaultyFiles::FaultyFiles() {
  real = sqlite3_vfs_find(nullptr);
  current = this;
  faulty = *real;
  faulty.zName = "faulty";
  faulty.szOsFile = static_cast<int>(sizeof(File)) + real->szOsFile;
  faulty.xOpen = Open;
  faulty.xDelete = Delete;
  faulty.xAccess = Access;
  faulty.xFullPathname = FullPath;
  faulty.xSleep = Sleep;
  sqlite3_vfs_register(&faulty, 1);
}

FaultyFiles::~FaultyFiles() {
  sqlite3_vfs_unregister(&faulty);
  current = nullptr;
}

std::string FaultyFiles::Reason(const FaultKind& kind) { return sqlite3_errstr(kind.result & 0xFF); }

void FaultyFiles::Disuse() { sqlite3_vfs_register(real, 1); }

void FaultyFiles::Fail(const FaultKind& kind, int n, bool isLasting) {
  fault = &kind;
  left = n;
  lasting = isLasting;
  failed = false;
}

void FaultyFiles::Keep(const std::string& path) {
  const bool isNew = deleted.erase(path) != 0 || synced.count(path) == 0;
  synced[path] = ContentOf(path);
  if (isNew) {
    KeepFolder();
  }
}

void FaultyFiles::NoteDeletion(const std::string& path, bool folderSynced) {
  deleted.insert(path);
  if (folderSynced) {
    KeepFolder();
  }
}

void FaultyFiles::KeepFolder() {
  for (const std::string& path : std::exchange(deleted, {})) {
    synced.erase(path);
  }
}

int FaultyFiles::Meet(Call call) {
  if (fault == nullptr || fault->call != call || (--left != 0 && !(lasting && left < 0))) {
    return SQLITE_OK;
  }
  failed = true;
  return fault->result;
}
