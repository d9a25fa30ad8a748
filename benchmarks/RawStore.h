#pragma once

#include <string>

struct sqlite3;
struct sqlite3_stmt;

/// The least that storing the benchmark's event takes: the same rows in the same tables, through SQLite's own
/// interface, with statements prepared once and the same settings.
class RawStore {
 public:
  /// @param database a store that was recorded in before; the events belong to its newest execution.
  explicit RawStore(const std::string& database);
  RawStore(const RawStore&) = delete;
  RawStore& operator=(const RawStore&) = delete;
  ~RawStore();

  /// All rows in one transaction.
  void SaveEvent();
  /// Each row in one of its own.
  void SaveEventRowByRow();
  /// Adds so many events in one transaction.
  void AddEvents(int count);

 private:
  void BindEvent();
  void InsertParameter(int position);
  void Run(sqlite3_stmt* statement);
  sqlite3_stmt* Prepare(const char* text);

  sqlite3* database = nullptr;
  sqlite3_stmt* begin = nullptr;
  sqlite3_stmt* insertEvent = nullptr;
  sqlite3_stmt* insertParameter = nullptr;
  sqlite3_stmt* commit = nullptr;
};
