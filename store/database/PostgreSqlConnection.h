#pragma once

#include "store/database/Connection.h"

#include <libpq-fe.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Velora::Store {

/// A connection to a database of a PostgreSQL server.
class PostgreSqlConnection : public Connection {
 public:
  using Clock = std::chrono::steady_clock;
  using Answer = std::unique_ptr<PGresult, decltype(&PQclear)>;
  using Value = std::optional<std::string>;  ///< Of a statement; nothing for NULL.

  /// @param address what PostgreSQL's client library takes.
  /// @param end when connecting is given up. The address then has to name the server by its number, since the time to
  /// find that out has no limit. Without it the timeouts of the address hold for each server that it names.
  /// @throws DatabaseError
  explicit PostgreSqlConnection(const std::string& address, std::optional<Clock::time_point> end = std::nullopt);
  ~PostgreSqlConnection() override { ForgetStatements(); }

  std::unique_ptr<Cursor> Prepare(const std::string& statement) override;
  std::unique_ptr<Cursor> PrepareShort(const std::string& statement) override;
  void RunScript(const std::string& statements) override { Ask(statements); }

  /// Runs statements without values. @return the answer to the last.
  Answer Ask(const std::string& statements);
  /// Runs one statement, with its values at $1, $2...
  Answer Ask(const std::string& statement, const std::vector<Value>& values);
  /// A text as a statement takes it.
  std::string Quoted(std::string_view text) const;
  /// Has a cursor closed on the server, together with what is asked next.
  void Close(const std::string& cursor) noexcept;

  /// When an answer is given up, whatever the network does: the connection is lost then. Never, without a time.
  void LimitTo(std::optional<Clock::time_point> when) { end = when; }
  /// Whether it was lost: what was asked last may have happened, or not.
  bool IsLost() const { return silent || PQstatus(handle.get()) != CONNECTION_OK; }

  PGconn* Handle() const { return handle.get(); }
  /// The same address, narrowed down to the server that it led to.
  std::string ServerUri() const;

 private:
  bool ConnectUntil(Clock::time_point when);
  void Expect(int sent);
  /// Waits for all of the answer to what was sent.
  Answer TakeAnswer();
  /// Sends the rest of what is asked, and waits until a part of the answer is there.
  bool AwaitAnswer();
  bool AwaitSocket(bool toWrite);
  [[noreturn]] void Fail(const std::string& reason, const std::string& state = "");

  const std::string uri;
  std::unique_ptr<PGconn, decltype(&PQfinish)> handle{nullptr, &PQfinish};
  std::optional<Clock::time_point> end;
  bool silent = false;
  std::string closing;
  int cursors = 0;
};

/// Connects to the database at an address. @throws NotReachable
PostgreSqlConnection ConnectToServer(const std::string& address);

}  // namespace Velora::Store
