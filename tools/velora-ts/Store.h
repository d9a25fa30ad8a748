#pragma once

#include "Settings.h"

#include <sqlite3.h>

#include <filesystem>
#include <memory>
#include <string>

/// A store opened for reading: one state of it, as it was at the opening, whatever hosts record meanwhile. Neither
/// changes the file, nor waits for those who write it, nor makes them wait.
class Store {
 public:
  /// @throws TsError when the file is no store that this program can read.
  explicit Store(const Quor::TolvaServices::Local::Database& database);

  const std::string& Path() const { return path; }
  int SchemaVersion() const { return schemaVersion; }
  sqlite3* Handle() const { return handle.get(); }

  /// @throws TsError when what was read may be a mixture, since hosts began to write while it was read.
  void ExpectUntouched() const;

 private:
  void Open();

  std::string path;
  bool closed = false;  // nobody had it open: read without the files that its users share
  std::filesystem::file_time_type written;
  std::unique_ptr<sqlite3, decltype(&sqlite3_close)> handle{nullptr, &sqlite3_close};
  int schemaVersion = 0;
};
