#include "store/schema/SessionLocks.h"

namespace Velora::Store {

const Table& SessionLocks() {
  static const Table table = {
      .name = "session_locks",
      .record = "",
      .columns = {{"session_id", Type::Integer, "the session"}, {"place", Type::Text, "identifies what has its lock"}},
      .primaryKey = {"session_id", "place"},
      .since = 3};
  return table;
}

std::string LockFileOf(const std::string& store) { return store + "-hosts"; }

}  // namespace Velora::Store
