#include "store/rotating/NewStore.h"

#include "store/database/SqliteConnection.h"

#include <VeloraSystem/Path.h>

namespace Velora::Store {

// Without a journal beside the file: if this process is killed, the file is of no use.
void MakeStore(const std::string& file, const Continued& previous) {
  SqliteConnection connection(file, System::AtAnyLength(file), SQLITE_OPEN_READWRITE);
  connection.RunScript("PRAGMA journal_mode = MEMORY; BEGIN EXCLUSIVE");
  BringUpSqlite(connection, 0, schemaVersion, previous);
  connection.RunScript("COMMIT");
}

}  // namespace Velora::Store
