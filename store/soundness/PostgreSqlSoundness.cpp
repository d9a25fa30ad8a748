#include "store/soundness/PostgreSqlSoundness.h"

#include "store/database/PostgreSqlConnection.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/schema/BringUp.h"
#include "store/schema/Tables.h"
#include "store/soundness/PostgreSqlCatalog.h"
#include "store/soundness/PostgreSqlRights.h"

#include <random>

namespace Velora::Store {
namespace {

constexpr const char* schemaOfStore =
    "SELECT quote_ident(nspname) FROM pg_namespace n JOIN pg_class c ON c.relnamespace = n.oid "
    "WHERE c.oid = to_regclass('ts_schema')";

// The partitions of the current month of keys and, if there are events of it, of the next. Hosts make later ones within
// a day, and a store without hosts needs none. The current month is never before that of the newest seal.
constexpr const char* missingPartitions = R"(
    WITH keys (newest, sealed, now) AS (
      SELECT (SELECT COALESCE(MAX(event_id), 0) FROM events) / 10000000000,
             (SELECT CAST(substring(up_to FROM '"event":([0-9]{1,16})[,}]') AS bigint) FROM seals
              WHERE seal_id < 10000000000 ORDER BY seal_id DESC LIMIT 1) / 10000000000,
             CAST(to_char(now() AT TIME ZONE 'UTC', 'YYYYMM') AS bigint)),
    counted (newest, present) AS (
      SELECT newest / 100 * 12 + newest % 100 - 1, GREATEST(sealed, now) / 100 * 12 + GREATEST(sealed, now) % 100 - 1
      FROM keys),
    needed (month) AS (
      SELECT to_char(number / 12, 'FM0000') || to_char(number % 12 + 1, 'FM00')
      FROM counted, generate_series(present, LEAST(newest, present) + 1) number)
    SELECT 'the partition of ' || parent || ' for ' || month || ' is missing; ' ||
           CASE WHEN to_regclass(parent || '_' || month) IS NULL THEN 'velora-ts prepare makes it'
                ELSE 'another relation has its name' END
    FROM needed, (VALUES ('events'), ('parameters')) parents (parent)
    WHERE NOT EXISTS (
      SELECT FROM pg_inherits JOIN pg_class c ON c.oid = inhrelid
      WHERE inhparent = to_regclass(parent)
        AND pg_get_expr(relpartbound, c.oid) LIKE 'FOR VALUES FROM (''' || month || '0000000000'')%'))";

constexpr const char* compared = "tables, views, functions and triggers with those of a new store: ";

/// A query for the rows of a table that refer to a row that does not exist.
std::string Dangling(const Table& table, const Column& reference) {
  const std::string& key = TableNamed(reference.refersTo).Key();
  return "SELECT DISTINCT x." + table.Key() + " FROM " + table.name + " x LEFT JOIN " + reference.refersTo +
         " y ON y." + key + " = x." + reference.name + " WHERE x." + reference.name + " IS NOT NULL AND y." + key +
         " IS NULL";
}

/// Compares the store with a new one of its version, which it makes in a transaction that is rolled back.
std::vector<std::string> CompareWithANewStore(Connection& connection, const std::string& schema, int version) {
  connection.RunScript(
      "SET client_min_messages = error; SET statement_timeout = '30s'; SET lock_timeout = '1s'; SET jit = off");
  connection.RunScript("BEGIN READ WRITE; SET LOCAL search_path = " + schema);
  const Catalog found = ReadCatalog(connection);
  const std::string beside = "velora_expected_" + std::to_string(std::random_device()());
  connection.RunScript("CREATE SCHEMA " + beside + "; SET LOCAL search_path = " + beside);
  BringUpPostgreSql(connection, 0, version);
  const Catalog expected = ReadCatalog(connection);
  connection.RunScript("ROLLBACK");
  return Differences(found, expected);
}

}  // namespace

Findings PostgreSqlSchemaFindings(const Reader& store) {
  Findings findings{RightsFindings(store), ""};
  findings.Add(MissingPartitions(store));
  if (store.Sql().Find<int>("SELECT 1 WHERE pg_is_in_recovery()")) {
    findings.notCompared = std::string(compared) + "the server is a standby, on which no new store can be made";
    return findings;
  }
  Rows schema(store, schemaOfStore);
  schema.Next();
  try {
    PostgreSqlConnection connection(store.Where().where);
    findings.Add(CompareWithANewStore(connection, std::string(schema.Text(0)), store.SchemaVersion()));
  } catch (const DatabaseError& error) {
    findings.notCompared = compared + error.reason;
  }
  return findings;
}

std::vector<std::string> MissingPartitions(const Reader& store) {
  std::vector<std::string> findings;
  for (Rows rows(store, missingPartitions); rows.Next();) {
    findings.emplace_back(rows.Text(0));
  }
  return findings;
}

std::vector<std::string> PostgreSqlDamageFindings(const Reader& store) {
  std::vector<std::string> findings;
  for (const Table& table : TablesOf(store.SchemaVersion())) {
    for (const Column& column : table.columns) {
      if (column.refersTo.empty()) {
        continue;
      }
      for (Rows rows(store, Dangling(table, column)); rows.Next();) {
        findings.push_back("row " + std::string(rows.Text(0)) + " of " + table.name + " refers to a row of " +
                           column.refersTo + " that does not exist");
      }
    }
  }
  return findings;
}

}  // namespace Velora::Store
