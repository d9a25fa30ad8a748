#include "store/copying/PostgreSqlTarget.h"

#include "store/database/PostgreSqlConnection.h"
#include "store/recording/Writer.h"
#include "store/schema/StoreNumbers.h"
#include "store/schema/Tables.h"
#include "store/soundness/PostgreSqlCatalog.h"

namespace Velora::Store {
namespace {

constexpr long long keysInAMonth = 10'000'000'000;  // docs/postgresql.md

// The statements that remove the foreign keys and triggers of the store, and those that make them again. Partitions get
// theirs from the whole table.
constexpr const char* askGuards = R"(
    WITH guards (removal, definition) AS (
      SELECT format('ALTER TABLE %s DROP CONSTRAINT %I', CAST(conrelid AS regclass), conname),
             format('ALTER TABLE %s ADD CONSTRAINT %I %s', CAST(conrelid AS regclass), conname,
                    pg_get_constraintdef(oid))
      FROM pg_constraint
      WHERE contype = 'f' AND conparentid = 0 AND connamespace = to_regnamespace(quote_ident(current_schema()))
      UNION ALL
      SELECT format('DROP TRIGGER %I ON %s', tgname, CAST(tgrelid AS regclass)), pg_get_triggerdef(t.oid)
      FROM pg_trigger t JOIN pg_class c ON c.oid = tgrelid
      WHERE NOT tgisinternal AND NOT relispartition AND tgenabled = 'O'
        AND relnamespace = to_regnamespace(quote_ident(current_schema())))
    SELECT string_agg(removal, '; '), string_agg(definition, '; ') FROM guards)";

std::string AllTables() {
  std::vector<std::string> names;
  for (const Table& table : Tables()) {
    names.push_back(table.name);
  }
  return Listed(names);
}

}  // namespace

// A table can take longer than the time that a statement of a host has.
PostgreSqlTarget::PostgreSqlTarget(Writer& store)
    : store(store),
      sql(static_cast<PostgreSqlConnection&>(store.Sql())),
      isOwner(sql.Find<bool>("SELECT pg_has_role(relowner, 'USAGE') FROM pg_class WHERE oid = "
                             "to_regclass('ts_schema')")
                  .value()) {
  sql.RunScript("SET statement_timeout = 0");
}

void PostgreSqlTarget::Fill(bool /*isNew*/, const std::function<void()>& fill) {
  Transaction transaction(store);
  sql.RunScript("LOCK TABLE " + AllTables() + " IN ACCESS EXCLUSIVE MODE");
  const Catalog schema = ReadCatalog(sql);
  const auto [removal, definition] = sql.Find<std::string, std::string>(askGuards).value();
  sql.RunScript(removal);
  fill();
  sql.RunScript(definition);  // which checks all rows
  for (const std::string& difference : Differences(ReadCatalog(sql), schema)) {
    throw Error("the schema of '" + store.Name() + "' is not what it was before the rows were copied: " + difference);
  }
  transaction.Commit();
}

void PostgreSqlTarget::ContinueNumbers() {
  const auto setNumbers = [this](const std::string& sequence, const std::string& number, const Table& table) {
    sql.RunScript("SELECT setval(" + sequence + ", COALESCE(MAX(" + number + "), 0) + 1, false) FROM " + table.name +
                  " WHERE " + IsOfStore(table.Key(), thisStore));
  };
  for (const Table& table : TablesBesideEvents()) {
    setNumbers("pg_get_serial_sequence('" + table.name + "', '" + table.Key() + "')", table.Key(), table);
  }
  setNumbers("'event_numbers'", "event_id % " + std::to_string(keysInAMonth), TableNamed("events"));
}

void PostgreSqlTarget::Finish() {
  if (isOwner) {
    sql.RunScript("ANALYZE");  // else the server plans the first queries for empty tables
  }
}

}  // namespace Velora::Store
