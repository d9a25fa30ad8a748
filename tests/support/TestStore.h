#pragma once

#include <soci/postgresql/soci-postgresql.h>
#include <soci/soci.h>
#include <soci/sqlite3/soci-sqlite3.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>

/// A store that a test names by a file: that file, or a database of the server that VELORA_TEST_SERVER says how to
/// connect to, where that is set.
class TestStore {
 public:
  explicit TestStore(std::filesystem::path file) : file(std::move(file)) {}

  static bool OnServer() { return Server() != nullptr; }

  /// The attributes of the element that names it in TSAL.config.
  /// @param path of the file, as they are to have it.
  std::string Attributes(const std::string& path) const {
    return OnServer() ? "Backend='postgresql' Connection='" + Connection() + "'"
                      : "Backend='sqlite3' Connection='" + path + "'";
  }
  /// How to connect to its database.
  std::string Connection() const { return On(Name()); }

  /// Makes its database where the server has none of that name yet.
  void Make() const {
    if (!OnServer()) {
      return;
    }
    soci::session server(soci::postgresql, On("postgres"));
    int there = 0;
    server << "SELECT COUNT(*) FROM pg_database WHERE datname = '" << Name() << "'", soci::into(there);
    if (there == 0) {
      server << "CREATE DATABASE " << Name();
    }
  }
  void Open(soci::session& sql) const {
    if (OnServer()) {
      return sql.open(soci::postgresql, Connection());
    }
    sql.open(soci::sqlite3, "dbname=\"" + file.string() + "\"");
  }

 private:
  std::string Name() const { return "test_" + std::to_string(std::hash<std::string>()(file.string())); }
  static const char* Server() { return std::getenv("VELORA_TEST_SERVER"); }
  static std::string On(const std::string& database) { return std::string(Server()) + " dbname=" + database; }

  std::filesystem::path file;
};
