#pragma once

#include "store/database/PostgreSqlConnection.h"
#include "store/database/SqliteConnection.h"

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

using SqlConnection = std::unique_ptr<Velora::Store::Connection>;

/// Opens a file of SQLite for plain SQL, which makes it where there is none.
inline SqlConnection OpenFile(const std::filesystem::path& file) {
  return std::make_unique<Velora::Store::SqliteConnection>(file.string(), file.string(),
                                                           SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
}

/// Connects to a server for plain SQL.
inline SqlConnection OpenServer(const std::string& address) {
  return std::make_unique<Velora::Store::PostgreSqlConnection>(address);
}

/// A store that a test names by a file: that file, or a database of the server that VELORA_TEST_SERVER says how to
/// connect to, where that is set.
class TestStore {
 public:
  explicit TestStore(std::filesystem::path file) : file(std::move(file)) {}

  static bool OnServer() { return Server() != nullptr; }

  /// The attributes of the element that names it in TSAL.config.
  /// @param path of the file, as the element must have it.
  std::string Attributes(const std::string& path) const {
    return OnServer() ? "Backend='postgresql' Connection='" + Address() + "'"
                      : "Backend='sqlite3' Connection='" + path + "'";
  }

  /// Makes its database where the server has none of that name yet.
  void Make() const {
    if (!OnServer()) {
      return;
    }
    const SqlConnection server = OpenServer(On("postgres"));
    if (!server->Find<int>("SELECT 1 FROM pg_database WHERE datname = ?1", Name())) {
      server->RunScript("CREATE DATABASE " + Name());
    }
  }
  SqlConnection Open() const { return OnServer() ? OpenServer(Address()) : OpenFile(file); }

 private:
  std::string Name() const { return "test_" + std::to_string(std::hash<std::string>()(file.string())); }
  std::string Address() const { return On(Name()); }
  static const char* Server() { return std::getenv("VELORA_TEST_SERVER"); }
  static std::string On(const std::string& database) { return std::string(Server()) + " dbname=" + database; }

  std::filesystem::path file;
};
