#include "store/copying/StoreCopy.h"

#include "store/copying/CopyTarget.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/recording/Writer.h"
#include "store/schema/Versions.h"

#include <limits>
#include <optional>

namespace Velora::Store {
namespace {

constexpr int rowsInATransaction = 5000;

/// The number of rows of a table up to a key and the values of the last one, as text; empty if there are none.
std::string EndOf(const Reader& store, const Table& table, long long key) {
  Rows count(store, "SELECT COUNT(*) FROM " + table.name + " WHERE " + table.Key() + " <= ?1");
  Rows last(store, "SELECT " + table.ColumnList() + " FROM " + table.name + " WHERE " + table.Key() + " = ?1");
  std::string end;
  if (count.Ask(key).Next() && last.Ask(key).Next()) {
    end = std::to_string(count.Integer(0)) + " rows, the last ";
    for (int column = 0; column < last.Columns(); ++column) {
      last.AppendValue(end, column);
    }
  }
  return end;
}

/// The target must be empty or have the first rows of the source, as an earlier copy left them.
void ExpectBeginning(const Reader& from, const Reader& to) {
  std::vector<Table> tables = TablesBesideEvents();
  tables.push_back(TableNamed("events"));
  for (const Table& table : tables) {
    Rows highest(to, "SELECT MAX(" + table.Key() + ") FROM " + table.name);
    if (!highest.Next() || highest.IsNull(0)) {
      continue;
    }
    const long long key = highest.Integer(0);
    if (EndOf(from, table, key) != EndOf(to, table, key)) {
      throw Error("'" + to.Name() + "' has rows of " + table.name + " that differ from '" + from.Name() +
                  "'; expected an empty store, or an earlier copy of it");
    }
  }
}

class Copier {
 public:
  using Copied = std::function<void(const std::string& table)>;

  Copier(const Reader& from, Writer& to, const Database& target, const Copied& copied)
      : from(from), to(to), target(MakeCopyTarget(to, target)), copied(copied) {}

  // A new store has recorded when it was made. A copy has the history of its source instead.
  void TakeOverHistory() {
    const auto [records, versions] =
        to.Sql()
            .Find<long long, long long>(
                "SELECT (SELECT COUNT(*) FROM sessions) + (SELECT COUNT(*) FROM seals), COUNT(*) FROM ts_schema")
            .value();
    if (records > 0 || versions != static_cast<long long>(VersionEntries(0).size())) {
      return;
    }
    Transaction transaction(to);
    target->WithoutGuardOfHistory([this] { to.Sql().RunScript("DELETE FROM ts_schema"); });
    const Table& history = TableNamed("ts_schema");
    const auto writer = target->RowsOf(history);
    for (Rows rows(from, "SELECT " + history.ColumnList() + " FROM ts_schema ORDER BY rowid"); rows.Next();) {
      writer->Add(rows);
    }
    writer->Flush();
    transaction.Commit();
  }

  void Copy() {
    for (const Table& table : TablesBesideEvents()) {
      CopyTable(table);
    }
    CopyEvents();
    target->Finish();
  }

 private:
  /// The highest key of a table; for an empty table, a number below every key.
  long long HighestKey(const Table& table) {
    const auto highest = to.Sql().Find<std::optional<long long>>("SELECT MAX(" + table.Key() + ") FROM " + table.name);
    return highest.value().value_or(std::numeric_limits<long long>::min());
  }

  void CopyTable(const Table& table) {
    const auto writer = target->RowsOf(table);
    Rows rows(from, "SELECT " + table.ColumnList() + " FROM " + table.name + " WHERE " + table.Key() +
                        " > ?1 ORDER BY " + table.Key());
    rows.Ask(HighestKey(table));
    for (bool more = rows.Next(); more;) {
      Transaction transaction(to);
      for (int count = 0; more && count < rowsInATransaction; ++count, more = rows.Next()) {
        writer->Add(rows);
        copied(table.name);
      }
      writer->Flush();
      transaction.Commit();
    }
  }

  // Events and their parameters are in one transaction: after an interruption no event lacks its parameters.
  void CopyEvents() {
    const Table& eventTable = TableNamed("events");
    const Table& parameterTable = TableNamed("parameters");
    const auto events = target->RowsOf(eventTable);
    const auto parameters = target->RowsOf(parameterTable);
    Rows rows(from, "SELECT " + eventTable.ColumnList() + " FROM events WHERE event_id > ?1 ORDER BY event_id");
    Rows theirs(from, "SELECT " + parameterTable.ColumnList() +
                          " FROM parameters WHERE event_id >= ?1 AND event_id <= ?2 ORDER BY event_id, position");
    rows.Ask(HighestKey(eventTable));
    for (bool more = rows.Next(); more;) {
      const long long first = rows.Integer(0);
      long long last = first;
      Transaction transaction(to);
      for (int count = 0; more && count < rowsInATransaction; ++count, more = rows.Next()) {
        last = rows.Integer(0);
        target->MakeRoomFor(last);
        events->Add(rows);
        copied(eventTable.name);
      }
      events->Flush();
      for (theirs.Ask(first, last); theirs.Next();) {
        parameters->Add(theirs);
      }
      parameters->Flush();
      transaction.Commit();
    }
  }

  const Reader& from;
  Writer& to;
  const std::unique_ptr<CopyTarget> target;
  const Copied& copied;
};

}  // namespace

void ExpectThisVersion(const Reader& store) {
  if (const int version = store.SchemaVersion(); version != schemaVersion) {
    throw Error("TS store '" + store.Name() + "' has a schema of version " + std::to_string(version) +
                "; expected version " + std::to_string(schemaVersion) +
                (version < schemaVersion ? ": run velora-ts prepare first" : ": a newer program made it"));
  }
}

void CopyRows(const Reader& from, const Database& target, const Copier::Copied& copied) {
  const auto to = OpenForWriting(target);
  ExpectThisVersion(Reader(target));
  Copier copier(from, *to, target, copied);
  copier.TakeOverHistory();
  ExpectBeginning(from, Reader(target));
  copier.Copy();
}

}  // namespace Velora::Store
