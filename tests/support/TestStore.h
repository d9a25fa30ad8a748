#pragma once

#include <soci/soci.h>
#include <soci/sqlite3/soci-sqlite3.h>
#ifndef _WIN32
#include <soci/postgresql/soci-postgresql.h>
#endif

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>

/// A store that a test names by a file: that file, or a database of the server in the folder
/// VELORA_TEST_SERVER where that is set.
class TestStore {
 public:
  explicit TestStore(std::filesystem::path file) : file(std::move(file)) {}

  /// Tells PostgreSQL's client library of the server too.
  static bool OnServer() {
    static const char* const folder = std::getenv("VELORA_TEST_SERVER");
#ifndef _WIN32
    static const bool told =
        folder != nullptr && setenv("PGHOST", folder, 1) == 0 && setenv("PGUSER", "velora", 1) == 0;
    return told;
#endif
    return folder != nullptr;
  }

  /// The attributes of the element that names it in TSAL.config.
  /// @param path of the file, as they are to have it.
  std::string Attributes(const std::string& path) const {
    return OnServer() ? "Backend='postgresql' Connection='dbname=" + Name() + "'"
                      : "Backend='sqlite3' Connection='" + path + "'";
  }
  std::string Name() const { return "test_" + std::to_string(std::hash<std::string>()(file.string())); }

  /// Makes its database where the server has none of that name yet.
  void Make() const {
#ifndef _WIN32
    if (!OnServer()) {
      return;
    }
    soci::session server(soci::postgresql, "dbname=postgres");
    int there = 0;
    server << "SELECT COUNT(*) FROM pg_database WHERE datname = '" << Name() << "'", soci::into(there);
    if (there == 0) {
      server << "CREATE DATABASE " << Name();
    }
#endif
  }
  void Open(soci::session& sql) const {
#ifndef _WIN32
    if (OnServer()) {
      return sql.open(soci::postgresql, "dbname=" + Name());
    }
#endif
    sql.open(soci::sqlite3, "dbname=\"" + file.string() + "\"");
  }

 private:
  std::filesystem::path file;
};
