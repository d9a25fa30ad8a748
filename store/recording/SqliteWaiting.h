#pragma once

#include <VeloraSystem/Turn.h>

#include <sqlite3.h>

#include <chrono>
#include <optional>
#include <string>

namespace Velora::Store {

/// How a connection waits for those that write the same file: in a queue, where only the first looks whether the file
/// is free; and since not everybody stands there, by looking again and again.
class SqliteWaiting {
 public:
  static constexpr std::chrono::seconds longest{30};

  SqliteWaiting() = default;
  SqliteWaiting(const SqliteWaiting&) = delete;
  SqliteWaiting& operator=(const SqliteWaiting&) = delete;

  /// Lets a connection wait like this as long as it is open.
  void Serve(sqlite3* database);
  /// To be called before a transaction, and after it.
  void TakeTurn(const std::string& file);
  void EndTurn();

 private:
  using Clock = std::chrono::steady_clock;

  /// @return whether to look again.
  bool WaitAgain(int tries);

  std::optional<System::Turn> turn;
  Clock::duration inQueue{};  // for the transaction that begins
  Clock::time_point end;      // of the waiting
};

}  // namespace Velora::Store
