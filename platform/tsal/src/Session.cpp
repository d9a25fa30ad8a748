#include "Session.h"

#include "Guid.h"
#include "Statement.h"
#include "StoredText.h"
#include "StoredTime.h"

#include <VeloraSystem/System.h>

#include <utility>

namespace Quor::TolvaServices::Local {

long long InsertSession(Connection& connection, const std::string& guid, const std::string& instrument,
                        const std::array<std::string, 3>& texts) {
  const long long key = connection.NextKey("sessions", "session_id");
  const std::string storedInstrument = ToStoredText(instrument);
  const std::string host = ToStoredText(Velora::System::ComputerName());
  const std::string now = ToStoredTime({});
  const std::string text1 = ToStoredText(texts[0]);
  const std::string text2 = ToStoredText(texts[1]);
  const std::string text3 = ToStoredText(texts[2]);
  Execute(connection.Sql(),
          "INSERT INTO sessions (session_id, guid, instrument, host, began_at, text1, text2, text3) "
          "VALUES (:key, :guid, :instrument, :host, :began, :text1, :text2, :text3)",
          soci::use(key), soci::use(guid), soci::use(storedInstrument), soci::use(host), soci::use(now),
          soci::use(text1), soci::use(text2), soci::use(text3));
  return key;
}

Session::Session(const Settings& settings, const std::string& text1, const std::string& text2, const std::string& text3)
    : database(settings.database), guid(NewGuid()) {
  row = RunOn(OpenConnection(database), [&](Connection& connection) {
    Transaction transaction(connection);
    const long long key = InsertSession(connection, guid, settings.instrument, {text1, text2, text3});
    transaction.Commit();
    return key;
  });
}

std::unique_ptr<Connection> Session::Take() {
  try {
    while (std::unique_ptr<Connection> connection = TakeIdle()) {
      if (connection->IsUsable()) {
        return connection;
      }
    }
  } catch (const StoreReplaced&) {
    CloseIdle();
    throw;
  }
  return Connect();
}

std::unique_ptr<Connection> Session::TakeIdle() {
  const std::lock_guard lock(mutex);
  if (idle.empty()) {
    return nullptr;
  }
  std::unique_ptr<Connection> connection = std::move(idle.back());
  idle.pop_back();
  return connection;
}

// Another store can be where this one was, and have another host's session in the same row.
std::unique_ptr<Connection> Session::Connect() {
  std::unique_ptr<Connection> connection = OpenConnection(database, Opening::ExpectsStore);
  connection->StartOperation();
  long long found = 0;
  try {
    Execute(connection->Sql(), "SELECT COUNT(*) FROM sessions WHERE session_id = :row AND guid = :guid", soci::use(row),
            soci::use(guid), soci::into(found));
  } catch (const soci::soci_error& reason) {
    throw connection->ErrorOf(reason);
  }
  if (found == 0) {
    throw StoreReplaced(connection->Name());
  }
  return connection;
}

void Session::Keep(std::unique_ptr<Connection> connection) noexcept {
  connection->EndOperation();
  try {
    const std::lock_guard lock(mutex);
    idle.push_back(std::move(connection));
  } catch (...) {
    // The operation has succeeded, and stays so; the next one opens a connection of its own.
  }
}

void Session::CloseIdle() {
  std::vector<std::unique_ptr<Connection>> closed;
  const std::lock_guard lock(mutex);
  closed.swap(idle);
}

}  // namespace Quor::TolvaServices::Local
