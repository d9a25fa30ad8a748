#pragma once

#include <VeloraSystem/System.h>

#include <sqlite3.h>

#include <array>
#include <string>

namespace Velora::Store {

/// The file of shared memory of an open database.
std::string SharedMemoryOf(sqlite3* database);

/// The three files of a store, as a connection has them open.
class SqliteFiles {
 public:
  /// @param name by which others find the database. It was read from, which opens all three.
  SqliteFiles(sqlite3* database, const std::string& name);

  /// Whether others find the same ones, so that they see what is written, and its lock.
  bool AreInPlace() const;
  /// Lets closing the connection leave alone what others have written under these names since.
  void SpareOthers() const;

 private:
  struct File {
    std::string path;
    System::FileId id;
  };
  static File Find(const std::string& path) { return {path, System::IdOf(path)}; }

  sqlite3* const database;
  const File main;
  const std::array<File, 2> log;
};

}  // namespace Velora::Store
