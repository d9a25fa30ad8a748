#include "store/reading/SettledReader.h"

#include "store/recording/Writer.h"
#include "store/schema/Tables.h"

namespace Velora::Store {

// On a server, a row gets its number before others can see it. So the locks wait for the transactions that have begun,
// and hold back others until the state to read is fixed. The tables are in the order in which hosts write them.
Reader SettledReader(const Database& database) {
  if (database.kind == Database::Kind::Sqlite) {
    return Reader(database);
  }
  const auto store = OpenForWriting(database);
  const Transaction held(*store);
  store->Sql().RunScript("LOCK TABLE " + Listed(HostTables()) + " IN SHARE MODE");
  return Reader(database, store->Sql().Find<std::string>("SELECT pg_export_snapshot()").value());
}

}  // namespace Velora::Store
