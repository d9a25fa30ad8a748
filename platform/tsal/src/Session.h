#pragma once

#include "Connection.h"
#include "Settings.h"

#include <array>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace Quor::TolvaServices::Local {

/// Inserts the row of a session, within a transaction. @return its key.
long long InsertSession(Connection& connection, const std::string& guid, const std::string& instrument,
                        const std::array<std::string, 3>& texts);

/// A session of the local TS: the database that it began with, and its row there.
///
/// Each operation works on a connection of its own, so that operations of different threads wait on one another no
/// longer than the database makes them. Connections are kept for the next operation.
class Session {
 public:
  /// Records a new session in the database that the settings name.
  Session(const Settings& settings, const std::string& text1, const std::string& text2, const std::string& text3);

  long long Row() const { return row; }
  const std::string& Guid() const { return guid; }

  /// Runs an operation on a connection and returns its result. What the database layer raises becomes a TsError that
  /// names the database. A connection is closed when that was raised on it, and kept when an argument was at fault.
  template <typename Operation>
  auto Run(Operation operation) {
    return RunOn(Take(), operation);
  }

 private:
  template <typename Operation>
  auto RunOn(std::unique_ptr<Connection> connection, const Operation& operation) {
    connection->StartOperation();
    try {
      auto result = operation(*connection);
      Keep(std::move(connection));
      return result;
    } catch (const soci::soci_error& reason) {
      if (connection->IsLost()) {
        CloseIdle();
      }
      throw connection->ErrorOf(reason);
    } catch (const StoreReplaced&) {
      CloseIdle();
      throw;
    } catch (const TsError&) {
      if (connection->IsOutsideTransaction()) {
        Keep(std::move(connection));
      }
      throw;
    }
  }

  std::unique_ptr<Connection> Take();
  std::unique_ptr<Connection> TakeIdle();
  /// A new connection to the store in which this session began.
  std::unique_ptr<Connection> Connect();
  void Keep(std::unique_ptr<Connection> connection) noexcept;
  void CloseIdle();

  const Database database;
  const std::string guid;
  long long row = 0;
  std::mutex mutex;
  std::vector<std::unique_ptr<Connection>> idle;  // guarded by mutex
};

}  // namespace Quor::TolvaServices::Local
