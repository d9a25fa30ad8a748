#pragma once

#include "store/database/PostgreSqlConnection.h"
#include "support/ScratchFolder.h"

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <string>

/// A server of a test's own, in a folder of its own, which client libraries of this process and of the programs that it
/// starts find.
class Server {
 public:
  /// @param port at which programs that know no sockets in folders reach it, with the password.
  explicit Server(std::filesystem::path folder, const std::string& port = "") : folder(std::move(folder)) {
    setenv("PGPASSWORD", password, 1);
    Run("start", port);
    setenv("PGHOST", port.empty() ? this->folder.c_str() : "127.0.0.1", 1);
    setenv("PGPORT", port.empty() ? "5432" : port.c_str(), 1);
    setenv("PGUSER", "velora", 1);
  }
  /// A server that follows a primary, or what restoring a copy of it makes. Programs do not find it by themselves.
  Server(std::filesystem::path folder, const std::string& how, const Server& of) : folder(std::move(folder)) {
    Run(how, of.folder.string());
  }
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;
  ~Server() { Run("stop"); }

  void Crash() const { Run("crash"); }
  void Resume() const { Run("resume"); }
  void Promote() const { Run("promote"); }

  static constexpr const char* password = "secret";
  std::filesystem::path folder;

 private:
  void Run(const std::string& verb, const std::string& more = "") const {
    EXPECT_EQ(std::system(("'" SCRIPTS "/postgresql' " + verb + " '" + folder.string() + "' " + more).c_str()), 0);
  }
};

/// A port of 127.0.0.1 at which nobody listens. It is none of those that the system gives to connections, and tests
/// that run at the same time begin to look at different ones.
inline std::string FreePort() {
  int port = 10000 + getpid() % 9000;
  for (bool free = false; !free;) {
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(++port));
    free = bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    close(listener);
  }
  return std::to_string(port);
}

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
