#include "store/recording/SqliteFiles.h"

#include <VeloraSystem/Path.h>
#include <VeloraSystem/Share.h>
#include "store/Error.h"

#include <sqlite3.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace Velora::Store {
namespace {

std::string LogOf(sqlite3* database) { return sqlite3_filename_wal(sqlite3_db_filename(database, "main")); }

}  // namespace

std::string SharedMemoryOf(sqlite3* database) { return std::string(sqlite3_db_filename(database, "main")) + "-shm"; }

void ExpectOwnDisk(const std::string& file) {
  if (System::IsOnShare(file)) {
    throw Error("TS database '" + file +
                "' is on a share; expected a file on a disk of this computer, because the log beside it needs shared "
                "memory and locks that work, which a share does not have");
  }
}

SqliteFiles::SqliteFiles(sqlite3* database, const std::string& name)
    : database(database), main{Find(name)}, log{Find(LogOf(database)), Find(SharedMemoryOf(database))} {
  if (const std::string opened = sqlite3_db_filename(database, "main"); opened != name) {
    main.push_back(Find(opened));
  }
  int moved = 0;
  sqlite3_file_control(database, "main", SQLITE_FCNTL_HAS_MOVED, &moved);
  if (moved != 0) {
    main.front().id = {};  // what was found is another file
  }
}

// SQLite removes the log only when the last connection is closed, so not while this one is open. No new file can have
// the identity of one that is open.
bool SqliteFiles::AreInPlace() const {
  const auto isInPlace = [](const File& file) {
    return file.id != System::FileId() && file.id == System::IdOfOpen(file.path);
  };
  return std::all_of(main.begin(), main.end(), isInPlace) && std::all_of(log.begin(), log.end(), isInPlace);
}

// When the last connection is closed, SQLite moves its log into the database, even a log that was deleted, and then
// removes any file with the name of the log.
void SqliteFiles::SpareOthers() const {
  const auto isAnothers = [](const File& file) {
    std::error_code none;
    const std::uintmax_t size = std::filesystem::file_size(System::PathOf(file.path), none);
    return !none && size != 0 && file.id != System::IdOfOpen(file.path);
  };
  if (std::any_of(log.begin(), log.end(), isAnothers)) {
    sqlite3_db_config(database, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
  }
}

}  // namespace Velora::Store
