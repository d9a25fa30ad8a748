#pragma once

#include "store/database/PostgreSqlConnection.h"
#include "support/ScratchFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

/// A server of a test's own, in a folder of its own, which client libraries of this process find.
class Server {
 public:
  explicit Server(std::filesystem::path folder) : folder(std::move(folder)) {
    Run("start");
    setenv("PGHOST", this->folder.c_str(), 1);
    setenv("PGUSER", "velora", 1);
  }
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;
  ~Server() { Run("stop"); }

  void Crash() const { Run("crash"); }
  void Resume() const { Run("resume"); }

  std::filesystem::path folder;

 private:
  void Run(const std::string& verb) const {
    EXPECT_EQ(std::system(("'" SCRIPTS "/postgresql' " + verb + " '" + folder.string() + "'").c_str()), 0);
  }
};

class PostgreSql : public testing::Test {
 protected:
  PostgreSql() { permissions(folder.path, std::filesystem::perms{0711}); }  // who runs the server passes through

  /// Runs statements as the superuser, and gives the first column of the last one's first row.
  static std::string Sql(const std::string& statements, const std::string& connection = "dbname=postgres") {
    Velora::Store::PostgreSqlConnection sql(connection + " options='-c client_min_messages=error'");
    const auto answer = sql.Ask(statements);
    return PQntuples(answer.get()) == 0 ? "" : PQgetvalue(answer.get(), 0, 0);
  }

  const ScratchFolder folder;
};
