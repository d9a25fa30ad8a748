#include "reading/SettledStore.h"

#include "Connection.h"
#include "Statement.h"
#include "store/schema/Tables.h"

namespace Velora::Ts {

namespace Local = Quor::TolvaServices::Local;

// On a server a number is taken before its row can be seen. So what is under way is let finish first, and more is held
// up until the state to read is fixed. The tables stand in the order in which hosts write them.
Store SettledStore(const Store::Database& database) {
  if (database.kind == Local::Database::Kind::Sqlite) {
    return Store(database);
  }
  const auto connection = Local::OpenConnection(database);
  try {
    const Local::Transaction held(*connection);
    std::string snapshot;
    Local::Execute(connection->Sql(),
                   "LOCK TABLE " + Velora::Store::Listed(Velora::Store::HostTables()) +
                       " IN SHARE MODE; SELECT pg_export_snapshot()",
                   soci::into(snapshot));
    return Store(database, snapshot);
  } catch (const soci::soci_error& reason) {
    throw connection->ErrorOf(reason);
  }
}

}  // namespace Velora::Ts
