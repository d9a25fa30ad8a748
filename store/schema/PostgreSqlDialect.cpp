#include "store/schema/PostgreSqlDialect.h"

#include "store/schema/Running.h"
#include "store/schema/ServerStatements.h"
#include "store/schema/StoreNumbers.h"
#include "store/schema/Tables.h"

#include <algorithm>

namespace Velora::Store {
namespace {

// Keys of rows of other stores.
constexpr const char* ofAnother = " BETWEEN 20000000000 AND 2000009999999999";

// Whether a number is not the last one that this session took from its sequence. After a number from far ahead was
// sealed, all others would be refused; so would they after an event of a later month.
std::string IsNotItsOwn(const Table& table) {
  if (table.isByMonth) {
    return "NEW.event_id % 10000000000 <> currval(CAST('event_numbers' AS regclass)) OR "
           "NEW.event_id / 10000000000 > event_month()";
  }
  return "NEW." + table.Key() + " <> currval(CAST('" + table.name + '_' + table.Key() + "_seq' AS regclass))";
}

/// @param store an expression for the store of a row, if what is unique is so per store.
std::string UniqueIndex(const Table& table, const std::vector<std::string>& names, const std::string& digest,
                        const std::string& store) {
  std::vector<std::string> digested;
  for (const Column& column : table.columns) {
    if (std::find(names.begin(), names.end(), column.name) != names.end()) {
      digested.push_back(column.type == Type::Text ? digest + '(' + column.name + ')' : column.name);
    }
  }
  if (!store.empty()) {
    digested.push_back(store);
  }
  return "CREATE UNIQUE INDEX " + table.name + "_once ON " + table.name + " (" + Listed(digested) + ')';
}

/// Whether a row refers to one of another store.
std::string RefersToAnother(const Table& table) {
  const std::string key = "NEW." + table.Key();
  const std::string store = table.isByMonth
                                ? "(CASE WHEN " + key + " < 2000010000000000 THEN " + StoreOf(key) + " ELSE 0 END)"
                                : StoreOf(key);
  std::string any;
  for (const Column& column : table.columns) {
    if (!column.refersTo.empty()) {
      any += (any.empty() ? "" : " OR ") + StoreOf("NEW." + column.name) + " <> " + store;
    }
  }
  return any;
}

/// Whether a row of this store may refer to rows of another.
bool MayReferToAnother(const Table& table) { return table.name == "notes"; }

std::string Condition(const std::string& condition, const std::string& otherwise) {
  return "      IF " + condition + " THEN\n        RAISE EXCEPTION '" + otherwise + "';\n      END IF;\n";
}

/// What is more to expect of a row of another store.
std::string MoreOf(const Table& table) {
  if (table.name == "stores") {
    return Condition("NEW.store_id % 10000000000 <> 1", "a store has one row of its own in stores") +
           Condition(
               StoreOf("NEW.store_id") + " > GREATEST((SELECT " + StoreOf("MAX(store_id)") + " FROM stores) + 1, 2)",
               "a new store gets the number after the highest in stores, at least 2");
  }
  if (table.name == "ts_schema") {
    return Condition(
        "ABS(NEW.version) > (SELECT MAX(ABS(version)) FROM ts_schema WHERE rowid < 10000000000) OR NEW.version > "
        "(SELECT MAX(version) FROM ts_schema WHERE rowid < 10000000000)",
        "the other store has a later version of the schema; expected velora-ts prepare to upgrade this one first");
  }
  const std::string more = RefersToAnother(table);
  return more.empty() ? "" : Condition(more, "rows of " + table.name + " refer to rows of their own store");
}

/// The function of the trigger that refuses a row, unless it is the next one of another store. One program at a time
/// adds rows of a store.
std::string InOrder(const Table& table) {
  const std::string key = "NEW." + table.Key();
  const std::string store = StoreOf(key);
  const std::string number =
      Condition(key + " NOT" + ofAnother,
                "rows of " + table.name +
                    (table.hostsAdd ? " have the next number, from 1 on, and none below those that are sealed"
                                    : " of this store are added by its owner, and numbered from 1 on"));
  const std::string more = MoreOf(table);
  const bool aboutReferences = !RefersToAnother(table).empty() && !MayReferToAnother(table);
  return "CREATE FUNCTION " + table.name + "_in_order() RETURNS trigger LANGUAGE plpgsql STABLE AS $$\n    BEGIN\n" +
         (aboutReferences ? more + number : number + more) +
         Condition("NOT pg_try_advisory_xact_lock((CAST(CAST(CAST('stores' AS regclass) AS oid) AS bigint) << 32) | " +
                       store + ")",
                   "another program is adding rows of this store") +
         Condition("EXISTS (SELECT FROM " + table.name + " WHERE " + table.Key() + " BETWEEN " + key + " AND " + store +
                       " * 10000000000 + 9999999999" +
                       (table.isByMonth ? " AND " + table.Key() + " < 2000010000000000" : "") + ")",
                   "rows of " + table.name + " of another store are only added above those that are here") +
         "      RETURN NEW;\n    END $$;\n    ALTER FUNCTION " + table.name +
         "_in_order() SET search_path = {schema}, pg_temp";
}

std::string Refuse(const Table& table, const std::string& trigger, const std::string& when) {
  return "CREATE TRIGGER " + table.name + trigger + " BEFORE " + when + " ON " + table.name;
}

}  // namespace

void PostgreSqlDialect::MakeUniquePerStore(const Table& table) {
  const std::string store = "(" + StoreOf(table.Key()) + ")";
  for (const std::vector<std::string>& names : table.uniquePerStore) {
    if (names.size() > 1) {
      Add("DROP INDEX " + table.name + "_once");
      Add(UniqueIndex(table, names, "text_digest", store));
      continue;
    }
    const std::string name = table.name + '_' + names.front();
    Add("ALTER TABLE " + table.name + " DROP CONSTRAINT " + name + "_key");
    Add(std::string("CREATE UNIQUE INDEX ")
            .append(name)
            .append(" ON ")
            .append(table.name)
            .append(" (" + names.front() + ", " + store + ')'));
  }
}

void PostgreSqlDialect::Replace(const View& view) {
  Add("CREATE OR REPLACE VIEW " + view.name + " AS\n       " + DefinitionOf(view));
}

void PostgreSqlDialect::KeepRows(const Table& table) {
  const std::string refuse = " EXECUTE FUNCTION refuse_change('" + table.name + "')";
  Add(Refuse(table, "_no_change", "UPDATE OR DELETE") + " FOR EACH ROW" + refuse);
  Add(Refuse(table, "_no_truncate", "TRUNCATE") + refuse);
}

// A role that may delete rows is not a host; it copies sealed rows from another store. But it can be that of a host,
// which is not to refer to rows of other stores either. Parameters have another trigger.
void PostgreSqlDialect::NumberRows(const Table& table) {
  if (!table.primaryKey.empty()) {
    return;
  }
  OnServer(InOrder(table));
  const std::string key = "NEW." + table.Key();
  const std::string isOutOfOrder = table.hostsAdd ? "CASE WHEN " + key + ofAnother + " THEN true ELSE " + key +
                                                        " <= sealed_number('" + table.record + "') OR " +
                                                        IsNotItsOwn(table) + " END"
                                                  : "true";
  const std::string refersToAnother = MayReferToAnother(table) ? "" : RefersToAnother(table);
  Add(Refuse(table, "_in_order", "INSERT") + " FOR EACH ROW WHEN (" + key + " NOT BETWEEN 1 AND " +
      std::to_string(highestKey) + (refersToAnother.empty() ? "" : " OR " + refersToAnother) +
      " OR NOT has_table_privilege(CAST('" + table.name + "' AS regclass), 'DELETE') AND " + isOutOfOrder +
      ") EXECUTE FUNCTION " + table.name + "_in_order()");
}

void PostgreSqlDialect::RefuseOldSeals() {
  OnServer("CREATE FUNCTION refuse_old_seal() RETURNS trigger LANGUAGE plpgsql STABLE AS $$\n    BEGIN\n" +
           Condition("EXISTS (SELECT FROM stores WHERE NOT " + IsOwn("store_id") + ")", oldSeal) +
           "      RETURN NEW;\n    END $$;\n    ALTER FUNCTION refuse_old_seal() SET search_path = {schema}, pg_temp");
  Add(std::string(
          "CREATE TRIGGER seals_with_others BEFORE INSERT ON seals FOR EACH ROW WHEN (NEW.schema_version < 3 ") +
      "AND NEW.seal_id NOT" + ofAnother + ") EXECUTE FUNCTION refuse_old_seal()");
}

void PostgreSqlDialect::NoteRunning() {
  Add("CREATE TABLE running (execution_id BIGINT PRIMARY KEY, status_id BIGINT NOT NULL)");
  Add(Running::fill);
  OnServer(Server::Version3::NoteRunning());
  Add("CREATE TRIGGER statuses_running AFTER INSERT ON statuses FOR EACH ROW EXECUTE FUNCTION note_running()");
}

void PostgreSqlDialect::OnServer(const std::string& statements) {
  static const std::string place = "{schema}";
  std::string filled = statements;
  for (std::size_t at = 0; (at = filled.find(place, at)) != std::string::npos; at += schema.size()) {
    filled.replace(at, place.size(), schema);
  }
  Add(filled);
}

std::string PostgreSqlDialect::TypeOf(const Table& table, const Column& column) const {
  switch (column.type) {
    case Type::Key:
      return table.isByMonth ? "BIGINT PRIMARY KEY DEFAULT next_event_id()"
                             : "BIGINT GENERATED BY DEFAULT AS IDENTITY PRIMARY KEY";
    case Type::Integer:
      return "BIGINT";
    case Type::Number:
      return "DOUBLE PRECISION";
    default:
      return "TEXT COLLATE \"C\"";  // texts sort by their bytes, as they do in a file
  }
}

const std::string& PostgreSqlDialect::DefinitionOf(const View& view) const {
  return view.onServer.empty() ? view.definition : view.onServer;
}

void PostgreSqlDialect::MakeUnique(const Table& table) {
  if (!table.uniqueTogether.empty()) {
    Add(UniqueIndex(table, "md5"));
  }
}

// The usual index refuses a row whose text is longer than a third of a page.
std::string PostgreSqlDialect::MethodOf(const Index& index) const { return index.ofAnyText ? " USING hash" : ""; }

std::string PostgreSqlDialect::EndOf(const Table& table) const {
  return table.isByMonth ? " PARTITION BY RANGE (" + table.Key() + ')' : "";
}

std::string UniqueIndex(const Table& table, const std::string& digest) {
  return UniqueIndex(table, table.uniqueTogether, digest, "");
}

}  // namespace Velora::Store
