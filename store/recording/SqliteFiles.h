#pragma once

#include <VeloraSystem/System.h>

#include <sqlite3.h>

#include <array>
#include <string>
#include <vector>

namespace Velora::Store {

/// The path of the shared-memory file of an open database.
std::string SharedMemoryOf(sqlite3* database);

/// @throws Error if a file is, or would be, on a share, where the log of a host does not work.
void ExpectOwnDisk(const std::string& file);

/// The three files of a store that a connection has open: database, log and shared memory.
class SqliteFiles {
 public:
  /// @param name the path by which others find the database, which must have been read from, so that all three are
  /// open.
  SqliteFiles(sqlite3* database, const std::string& name);

  /// Whether the paths still lead to the same files, so that others see what is written and its lock.
  bool AreInPlace() const;
  /// Makes the closing of the connection leave the log alone if others have made a new one under its name.
  void SpareOthers() const;

 private:
  struct File {
    std::string path;
    System::FileId id;
  };
  static File Find(const std::string& path) { return {path, System::IdOfOpen(path)}; }

  sqlite3* const database;
  std::vector<File> main;  // as others find it, and as SQLite opened it if that is another path
  const std::array<File, 2> log;
};

}  // namespace Velora::Store
