#pragma once

#include "store/database/Connection.h"
#include "store/database/PostgreSqlConnecting.h"

#include <libpq-fe.h>

#include <chrono>
#include <deque>
#include <functional>
#include <map>
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
  using Value = std::optional<std::string>;             ///< A value in a statement; nothing for NULL.
  using Receiver = std::function<void(Answer answer)>;  ///< Must not throw.

  /// @param address an address for PostgreSQL's client library.
  /// @param end when to give up connecting; by default after the connect_timeout of the address, for all its servers
  /// together. Looking up a name has no time limit.
  /// @throws DatabaseError
  explicit PostgreSqlConnection(const std::string& address, std::optional<Clock::time_point> end = std::nullopt);
  ~PostgreSqlConnection() override { ForgetStatements(); }

  std::unique_ptr<Cursor> Prepare(const std::string& statement) override;
  std::unique_ptr<Cursor> PrepareShort(const std::string& statement) override;
  void RunScript(const std::string& script) override { Ask(script); }

  /// Runs statements without values. @return the result of the last one.
  Answer Ask(const std::string& script);
  /// Runs one statement with values at $1, $2...
  Answer Ask(const std::string& statement, const std::vector<Value>& values);
  /// Runs COPY ... FROM STDIN, to which Send() then sends the rows.
  void BeginSending(const std::string& statement);
  void Send(std::string_view rows);
  void EndSending();

  // Several statements in one round trip. After an error, the server skips the statements that were sent together with
  // the one that failed. Outside a transaction, these are one transaction.

  /// Sends a statement without waiting for its result.
  void Send(const std::string& statement, const std::vector<Value>& values, Receiver receive = nullptr);
  /// The same for a statement that is run often: the server keeps it prepared.
  void SendKept(const std::string& statement, const std::vector<Value>& values, Receiver receive = nullptr);
  /// Sends a statement that may fail: then it has no result, and the statements before and after it are not affected.
  void SendTrial(const std::string& statement, Receiver receive);
  /// Waits for the results of all that was sent. Throws the first error.
  void Settle();
  /// From now on, statements whose results nobody reads are sent without waiting, or no longer.
  void DeferRuns(bool deferred) { defersRuns = deferred; }
  /// Runs a statement whose result nobody reads.
  void RunKept(const std::string& statement, const std::vector<Value>& values);

  /// A text as a literal in a statement.
  std::string Quoted(std::string_view text) const;
  /// Closes a cursor on the server, together with the next statement.
  void Close(const std::string& cursor) noexcept;

  /// Sets a time after which the connection gives up waiting for a result and is lost; nothing for no limit.
  void LimitTo(std::optional<Clock::time_point> when) { end = when; }
  /// Whether the connection was lost. The last statement may or may not have had its effect.
  bool IsLost() const { return silent || PQstatus(handle.get()) != CONNECTION_OK; }

  /// Whether the server gave a warning, since it was forgotten.
  bool HasWarned() const { return warned; }
  void ForgetWarning() { warned = false; }
  /// How long connecting took, without the looking up of names.
  Clock::duration TimeToConnect() const { return timeToConnect; }
  PGconn* Handle() const { return handle.get(); }
  /// The address of the connection, restricted to the server to which it was made.
  std::string ServerUri() const;

 private:
  /// Something that was sent, and whose result was not read yet.
  struct Sent {
    enum class What { Statement, Trial, Preparation, EndOfPart };

    What what;
    Receiver receive = nullptr;
    std::string statement = "";  ///< That was prepared.
  };

  void Expect(int accepted);
  void ExpectSending(int accepted);
  void Expect(const PGresult* answer);
  /// Begins to send statements together.
  void StartPipeline();
  /// Ends what an error makes the server skip.
  void EndPart();
  /// The name of a statement on the server.
  std::string Prepared(const std::string& statement, int values);
  /// Reads the result of what was sent first. @return the result of a statement that failed, or nothing.
  Answer Receive();
  /// Waits for the whole result of one statement, which can be an error.
  Answer TakeResult();
  /// Waits for the whole result of one statement. Throws its error.
  Answer TakeAnswer();
  /// Sends the rest of the statement, and waits until a part of the result has arrived.
  bool AwaitAnswer();
  bool AwaitSocket(bool toWrite);
  [[noreturn]] void Fail(const std::string& reason, const std::string& state = "");

  const std::string uri;
  PostgreSqlHandle handle{nullptr, &PQfinish};
  Clock::duration timeToConnect{};
  std::optional<Clock::time_point> end;
  bool silent = false;
  bool warned = false;
  bool defersRuns = false;
  std::deque<Sent> sent;
  std::map<std::string, std::string> prepared;  // the names of statements on the server
  int preparations = 0;                         // counts the names
  std::string closing;
  int cursors = 0;
};

/// Connects to the database at an address. @throws NotReachable when that fails.
PostgreSqlConnection ConnectToServer(const std::string& address);

}  // namespace Velora::Store
