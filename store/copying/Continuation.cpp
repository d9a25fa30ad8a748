#include "store/copying/Continuation.h"

#include "store/copying/RowCopy.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/recording/Writer.h"
#include "store/schema/Tables.h"
#include "store/transfer/LastRow.h"
#include "store/transfer/TakenStore.h"

#include <optional>

namespace Velora::Store {
namespace {

std::optional<long long> HighestKey(const Reader& store, const Table& table, const Keys& keys) {
  Rows highest(store, "SELECT MAX(" + table.Key() + ") FROM " + table.name + " WHERE " + table.Key() + " > ?1 AND " +
                          table.Key() + " <= ?2");
  return highest.Ask(keys.before, keys.last).Next() && !highest.IsNull(0) ? std::optional(highest.Integer(0))
                                                                          : std::nullopt;
}

}  // namespace

bool CanBeTakenIn(const Reader& store) {
  if (store.Where().kind != Database::Kind::Sqlite) {
    return false;
  }
  for (const Table& table : Tables()) {
    if (HighestKey(store, table, Keys::All()).value_or(0) >= numbersOfAStore) {
      return false;
    }
  }
  return true;
}

void ExpectUnknownOrTakenIn(const Reader& from, Writer& to, Database::Kind kind) {
  const auto number = NumberIn(to.Sql(), GuidOf(from.Sql()));
  if (number == thisStore) {
    throw Error("'" + from.Name() + "' and '" + to.Name() + "' are one store, or one is a copy of the other");
  }
  Rows first(from, "SELECT guid FROM sessions ORDER BY session_id LIMIT 1");
  if (!number && first.Next() && to.Sql().Find<int>("SELECT 1 FROM sessions WHERE guid = ?1", first.Whole(0))) {
    throw Error("'" + to.Name() + "' has the records of '" + from.Name() +
                "' under other numbers, from an earlier version or from a clone of the folder; expected a target "
                "without them: a new store can take in all");
  }
  if (kind == Database::Kind::Sqlite &&
      to.Sql().Find<int>("SELECT 1 FROM sessions WHERE session_id < ?1", numbersOfAStore)) {
    throw Error("'" + to.Name() +
                "' has records of its own hosts, which could not go on there; expected a store on a server, or a file "
                "into which only copies go");
  }
}

void ExpectContinuation(const Reader& from, const Reader& to, long long number) {
  const Keys keys = Keys::OfStore(number);
  for (const Table& table : Tables()) {
    const auto key = table.primaryKey.empty() ? HighestKey(to, table, keys) : std::nullopt;
    if (!key) {
      continue;
    }
    const std::string row = RowWith(from.Sql(), table, *key - keys.shift, keys.shift);
    if (row != RowWith(to.Sql(), table, *key, 0)) {
      throw Error(WhyNoneCanFollow(from.Name(), row, table, *key - keys.shift, to.Name()));
    }
  }
}

}  // namespace Velora::Store
