#include "store/reading/EventKeys.h"

#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/schema/StoreNumbers.h"

namespace Velora::Store {

// The rows of another store have no months.
KeyRange EventKeysOf(const Reader& store, long long root, const KeyRange& all) {
  if (StoreOf(root) != thisStore || store.Where().kind != Database::Kind::PostgreSql) {
    return all;
  }
  const std::string ofExecution =
      "(SELECT event_id FROM events WHERE execution_id = x.execution_id AND event_id > ?2 AND event_id <= ?3 "
      "ORDER BY event_id";
  Rows ends(store, "SELECT MIN(" + ofExecution + " LIMIT 1)), MAX(" + ofExecution +
                       " DESC LIMIT 1)) FROM executions x WHERE root_id = ?1");
  ends.Ask(root, all.after, all.upTo).Next();
  return ends.IsNull(0) ? KeyRange{all.after, all.after} : KeyRange{ends.Integer(0) - 1, ends.Integer(1)};
}

KeyRange EventKeysOf(const Reader& store, long long root) { return EventKeysOf(store, root, KeysBeside(root)); }

}  // namespace Velora::Store
