#pragma once

#include "store/database/PostgreSqlConnection.h"
#include "store/forwarding/Marks.h"
#include "store/forwarding/Portion.h"

#include <chrono>
#include <string>
#include <string_view>

namespace Velora::Store {

/// The store of a facility on a server, over one connection, for the rows of one other store.
///
/// What the server refuses is thrown as Refused if another try would be refused too, else as NotReachable.
class Facility {
 public:
  /// Connects. @throws Refused for a store of another version.
  explicit Facility(const std::string& address);
  Facility(const Facility&) = delete;
  Facility& operator=(const Facility&) = delete;

  const std::string& Name() const { return connection.Name(); }

  /// Takes the lock of the store in a file, and gives it a number if it has none.
  /// @throws AnotherForwarder when somebody has the lock.
  void Take(const Reader& file);
  /// What is added to the keys of the store.
  long long Shift() const;
  /// The row of the store with a number, in the form of RowWith(); empty if there is none.
  std::string RowOf(const Table& table, long long number);

  /// How far the rows of the store have come.
  Marks Reached();
  /// The same, and notes that the store was heard, and what waits there.
  Marks Note(const Waiting& waiting);
  /// Adds a portion of rows, in a transaction that also notes what waits behind it.
  /// @param from how far the rows must have come.
  /// @param longest how long the transaction may take.
  /// @return whether they have come as far as that. If not, nothing is added.
  bool Add(const Portion& portion, const Marks& from, const Waiting& left, std::chrono::milliseconds longest);

 private:
  [[noreturn]] void Explain(const DatabaseError& error) const;
  void Configure();
  void ExpectThisVersion();
  void ExpectNoSessionOf(const Reader& file);
  void Join(const Reader& file);
  void TakeLockOf(long long store);
  /// Sends the question how far the rows have come, which the next Settle() answers: with 0 for all if the store has
  /// another number now.
  void SendQuestion(Marks& marks);
  void SendNote(const Waiting& waiting);
  void Copy(const Table& table, std::string_view rows);

  PostgreSqlConnection connection;
  std::string guid;      // of the store; empty before it was taken
  long long number = 0;  // that it has here
};

}  // namespace Velora::Store
