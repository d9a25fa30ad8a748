#include "store/forwarding/Contacts.h"

#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/schema/StoreNumbers.h"
#include "store/values/StoredTime.h"

namespace Velora::Store {
namespace {

constexpr double longestSilence = 600.0;  // seconds

std::string NowThere(const Reader& store) {
  if (store.Where().kind == Database::Kind::Sqlite) {
    return ToStoredTime(Now());
  }
  return store.Sql()
      .Find<std::string>("SELECT to_char(clock_timestamp() AT TIME ZONE 'UTC', 'YYYY-MM-DD\"T\"HH24:MI:SS.US\"Z\"')")
      .value();
}

/// Whether there is the table, and this role may read it.
bool HasContacts(const Reader& store) {
  return store.Sql()
      .Find<bool>(store.Where().kind == Database::Kind::Sqlite
                      ? "SELECT COUNT(*) FROM sqlite_master WHERE name = 'arrivals'"
                      : "SELECT COALESCE(has_table_privilege(to_regclass('arrivals'), 'SELECT'), false)")
      .value();
}

/// An expression for whether the lock of the store heard.store is held (store/transfer/TakenStore.h).
std::string IsLocked(const Reader& store) {
  return store.Where().kind == Database::Kind::Sqlite
             ? "0"
             : "(SELECT COUNT(*) FROM pg_locks WHERE locktype = 'advisory' AND classid = CAST(CAST('stores' AS "
               "regclass) AS oid) AND CAST(objid AS bigint) = heard.store AND objsubid = 1 AND database = (SELECT oid "
               "FROM pg_database WHERE datname = current_database()))";
}

}  // namespace

bool Contact::IsSilent() const { return !isConnected && silence > longestSilence && (!isContinued || waiting > 0); }

std::vector<Contact> Contacts(const Reader& store) {
  std::vector<Contact> contacts;
  if (!HasContacts(store)) {
    return contacts;
  }
  const std::string size = std::to_string(numbersOfAStore);
  const std::string now = NowThere(store);
  Rows rows(store,
            "SELECT s.guid, COALESCE((SELECT instrument FROM sessions WHERE session_id BETWEEN heard.store * " + size +
                " AND heard.store * " + size + " + " + size +
                " - 1 ORDER BY session_id DESC LIMIT 1), ''), heard.at, " +
                "heard.waiting, COALESCE(heard.waiting_since, ''), " + IsLocked(store) +
                ", (SELECT COUNT(*) FROM stores WHERE previous_guid = s.guid) FROM arrivals heard JOIN stores s ON "
                "s.store_id = heard.store * " +
                size + " + 1 ORDER BY heard.store");
  rows.Ask();
  while (rows.Next()) {
    Contact one;
    one.guid = rows.Text(0);
    one.instrument = rows.Text(1);
    one.heardAt = rows.Text(2);
    one.silence = SecondsBetween(one.heardAt, now).value_or(0);
    one.waiting = rows.Integer(3);
    one.waitingSince = rows.Text(4);
    one.isConnected = rows.Integer(5) != 0;
    one.isContinued = rows.Integer(6) != 0;
    contacts.push_back(std::move(one));
  }
  return contacts;
}

}  // namespace Velora::Store
