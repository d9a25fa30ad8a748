#include "store/recording/ServerLocks.h"

#include "store/database/PostgreSqlStart.h"
#include "store/schema/SessionLocks.h"

#include <VeloraSystem/Sockets.h>
#include <VeloraSystem/System.h>

#include <map>
#include <memory>
#include <mutex>
#include <set>

namespace Velora::Store {
namespace {

using Clock = PostgreSqlConnection::Clock;

constexpr std::chrono::minutes untilNextTry{1};

// Such a connection is idle for days.
constexpr const char* configureHolder =
    "SELECT set_config('idle_session_timeout', '0', false), set_config('statement_timeout', '4s', false), "
    "set_config('lock_timeout', '4s', false), set_config('application_name', 'Velora, lock of a host', false)";

/// The lock first: whoever sees the row must find the lock. A lock for sharing, so that nobody waits for it.
const std::string& HoldAndNote() {
  static const std::string statement =
      "INSERT INTO session_locks (session_id, place) SELECT CAST($1 AS bigint), " + std::string(ServerLock::where) +
      " || " + ServerLock::since + " || '" + ServerLock::by +
      "' || pg_backend_pid() FROM (SELECT pg_try_advisory_lock_shared((CAST(" + ServerLock::ofStore +
      " AS bigint) << 32) | CAST($1 AS bigint)) AS held OFFSET 0) AS lock WHERE held ON CONFLICT DO NOTHING";
  return statement;
}

/// Notes which hosts of what did not finish have ended, as long as the server can tell.
const std::string& NoteEnded() {
  static const std::string statement =
      "INSERT INTO session_locks (session_id, place) SELECT DISTINCT taken.session_id, '" +
      std::string(ServerLock::ended) +
      "' || taken.place FROM running JOIN statuses USING (status_id) JOIN session_locks here USING (session_id) "
      "JOIN session_locks taken USING (session_id) WHERE starts_with(here.place, " +
      ServerLock::where + " || " + ServerLock::since + " || '" + ServerLock::by +
      "') AND NOT starts_with(taken.place, '" + ServerLock::ended + "') AND session_id NOT IN " + ServerLock::held +
      " ON CONFLICT DO NOTHING";
  return statement;
}

/// A connection that holds locks.
class Holder {
 public:
  Holder(const std::string& server, Clock::time_point end) : connection(server, end) {
    connection.Send(findStore, {});
    connection.Send(configureHolder, {});
    connection.SendTrial(NoteEnded(), nullptr);
    if (!System::KeepFromChildren(PQsocket(connection.Handle()))) {  // last, because only the destructor forgets it
      throw Error("a process can have no more descriptors that its children do not have");
    }
  }
  Holder(const Holder&) = delete;
  Holder& operator=(const Holder&) = delete;
  ~Holder() { System::ForgetSocket(PQsocket(connection.Handle())); }

  void Hold(long long session, Clock::time_point end) {
    connection.LimitTo(end);
    connection.Send(HoldAndNote(), {std::to_string(session)});
    connection.Settle();
  }
  // It is idle, so whatever arrives is the server's last message and then its end, for which there are two looks.
  bool IsLost() {
    for (int look = 0; look < 2; ++look) {
      if (System::AwaitSocket(PQsocket(connection.Handle()), false, std::chrono::milliseconds(0)) &&
          PQconsumeInput(connection.Handle()) != 1) {
        return true;
      }
    }
    return connection.IsLost();
  }

 private:
  PostgreSqlConnection connection;
};

/// The locks of this process in one store.
struct HeldThere {
  std::unique_ptr<Holder> holder;
  std::set<long long> sessions;  // also those whose locks were lost
  Clock::time_point nextTry;     // after a failure

  void Hold(const PostgreSqlConnection& server, long long session, Clock::time_point end) {
    const bool isNew = sessions.insert(session).second;
    if (Clock::now() < nextTry || (holder && !holder->IsLost() && !isNew)) {
      return;
    }
    nextTry = Clock::now() + untilNextTry;
    if (holder && !holder->IsLost()) {
      holder->Hold(session, end);
    } else {
      holder.reset();
      holder = std::make_unique<Holder>(server.ServerUri(), end);
      for (const long long one : sessions) {
        holder->Hold(one, end);
      }
    }
    nextTry = {};
  }
};

/// The stores in which this process holds locks.
struct Process {
  const long number = System::ProcessNumber();
  std::mutex mutex;
  std::map<std::string, HeldThere> stores;  // by their addresses; guarded by mutex
};

// Never destroyed: the locks are held until the process ends. A forked child has closed the connections of its parent,
// whose mutex may be locked for ever there, and gets its own.
Process& ThisProcess() {
  static std::mutex mutex;
  static Process* process = nullptr;
  const std::lock_guard lock(mutex);
  if (process == nullptr || process->number != System::ProcessNumber()) {
    process = new Process;
  }
  return *process;
}

}  // namespace

void HoldOnServer(const std::string& address, const PostgreSqlConnection& server, long long session,
                  Clock::time_point end) noexcept {
  if (session > ServerLock::highestSession) {
    return;
  }
  try {
    Process& process = ThisProcess();
    const std::unique_lock lock(process.mutex, std::try_to_lock);
    if (lock.owns_lock()) {  // else another thread sees to it
      process.stores[address].Hold(server, session, end);
    }
  } catch (...) {
    // Nobody knows then whether this host lives, and it records.
  }
}

}  // namespace Velora::Store
