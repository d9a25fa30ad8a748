#pragma once

#include "store/database/SqliteConnection.h"
#include "store/reading/Source.h"

#include <filesystem>
#include <memory>
#include <string>

namespace Velora::Store {

/// An SQLite file, opened for reading.
class SqliteSource : public Source {
 public:
  /// @throws NoStoreYet when there is no such file; Error when it cannot be read.
  explicit SqliteSource(const std::string& path);

  SqliteConnection& Sql() override { return *connection; }
  bool IsStore() override;
  void ExpectUntouched() const override;
  void Release() override { connection.reset(); }
  void Renew() override { OpenFile(); }

 private:
  void OpenFile();
  void Open(const std::string& name, const char* how);
  void ExpectOneName() const;
  void Begin();

  const std::string path;
  std::string file;     // the path without links
  bool closed = false;  // no program had it open, so it is read without log and shared memory
  std::filesystem::file_time_type written;
  std::unique_ptr<SqliteConnection> connection;
};

}  // namespace Velora::Store
