#pragma once

#include <VeloraSystem/Turn.h>

#include <sqlite3.h>

#include <chrono>
#include <optional>
#include <string>

namespace Velora::Store {

/// How a connection waits for others that write the same file: in a queue, of which only the first polls whether the
/// file is free. Programs that do not use the queue can write too, so the first must poll.
class SqliteWaiting {
 public:
  static constexpr std::chrono::seconds longest{30};

  SqliteWaiting() = default;
  SqliteWaiting(const SqliteWaiting&) = delete;
  SqliteWaiting& operator=(const SqliteWaiting&) = delete;

  /// Makes a connection wait like this until it is closed.
  void Serve(sqlite3* database);
  /// Must be called before a transaction.
  void TakeTurn(const std::string& file);
  /// Must be called after the transaction.
  void EndTurn();

 private:
  using Clock = std::chrono::steady_clock;

  /// Waits before the next try. @return whether to try again.
  bool WaitAgain(int tries);

  std::optional<System::Turn> turn;
  Clock::duration inQueue{};  // time spent in the queue for this transaction
  Clock::time_point end;      // when to give up
};

}  // namespace Velora::Store
