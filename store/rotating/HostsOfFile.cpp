#include "store/rotating/HostsOfFile.h"

#include "store/reading/HeldLocks.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/recording/Writer.h"
#include "store/schema/SessionLocks.h"

namespace Velora::Store {

std::string LivingHost(const Reader& store) {
  if (store.SchemaVersion() < SessionLocks().since) {
    return "";
  }
  const auto locks = AskForLocks(store);
  Rows sessions(store,
                "SELECT s.session_id, s.instrument, s.host, s.began_at FROM sessions s WHERE s.session_id IN (SELECT "
                "session_id FROM session_locks) ORDER BY s.session_id DESC");
  while (sessions.Next()) {
    if (locks->IsHeld(sessions.Integer(0)).value_or(false)) {
      return "the host of '" + std::string(sessions.Text(1)) + "' on " + std::string(sessions.Text(2)) +
             " that began at " + std::string(sessions.Text(3));
    }
  }
  return "";
}

void NoteThatHostsEnded(Writer& store) {
  const std::string ended = std::string("'") + ServerLock::ended + "'";
  Transaction transaction(store);
  store.Sql().RunScript("INSERT OR IGNORE INTO session_locks (session_id, place) SELECT session_id, " + ended +
                        " || place FROM session_locks WHERE place NOT LIKE " + ended +
                        " || '%' AND session_id IN (SELECT s.session_id FROM running r JOIN statuses s ON s.status_id "
                        "= r.status_id)");
  transaction.Commit();
}

}  // namespace Velora::Store
