#include "store/transfer/TakenStore.h"

#include "store/Error.h"
#include "store/database/Connection.h"
#include "store/schema/StoreNumbers.h"

namespace Velora::Store {
namespace {

constexpr long long highestNumber = firstMonthlyKey / numbersOfAStore - 1;

/// The number of an advisory lock for a store, which other stores of the database do not have.
std::string LockOf(long long number) {
  return "(CAST(CAST(CAST('stores' AS regclass) AS oid) AS bigint) << 32) | " + std::to_string(number);
}

}  // namespace

std::string GuidOf(Connection& store) {
  const auto guid = store.Find<std::string>("SELECT guid FROM stores WHERE store_id = ?1", thisStore);
  if (!guid) {
    throw Error("'" + store.Name() + "' has no guid of its own in the table stores; expected the row " +
                std::to_string(thisStore));
  }
  return *guid;
}

std::optional<long long> NumberIn(Connection& store, const std::string& guid) {
  const auto key = store.Find<long long>("SELECT store_id FROM stores WHERE guid = ?1", guid);
  return key ? std::optional(StoreOf(*key)) : std::nullopt;
}

// No store has the number 0, so its lock is that of the numbers.
long long NumberFor(Database::Kind kind, Connection& store, const std::string& guid) {
  if (kind == Database::Kind::PostgreSql) {
    store.RunScript("SELECT pg_advisory_xact_lock(" + LockOf(0) + ")");
  }
  if (const auto known = NumberIn(store, guid)) {
    return *known;
  }
  const long long number = StoreOf(store.Find<long long>("SELECT MAX(store_id) FROM stores").value()) + 1;
  if (number > highestNumber) {
    throw Error("'" + store.Name() + "' has the rows of too many other stores; expected less than 200000");
  }
  return number;
}

bool TakeLock(Connection& server, long long number) {
  return server.Find<bool>("SELECT pg_try_advisory_lock(" + LockOf(number) + ")").value();
}

}  // namespace Velora::Store
