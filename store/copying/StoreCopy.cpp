#include "store/copying/StoreCopy.h"

#include "store/copying/CopyTarget.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/recording/Writer.h"
#include "store/schema/Running.h"
#include "store/schema/Tables.h"
#include "store/schema/Versions.h"
#include "store/transfer/RowBytes.h"
#include "store/transfer/RowWriter.h"

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

/// A question for the rows of a table behind a key and up to another.
std::string RowsBetween(const Table& table) {
  const std::string& key = table.Key();
  return "SELECT " + table.ColumnList() + " FROM " + table.name + " WHERE " + key + " > ?1 AND " + key +
         " <= ?2 ORDER BY " + (table.primaryKey.empty() ? key : Listed(table.primaryKey));
}

constexpr long long beforeAll = std::numeric_limits<long long>::min();
constexpr long long afterAll = std::numeric_limits<long long>::max();

class Visits {
 public:
  explicit Visits(const RowVisitor& visit) : visit(visit) {}

  /// Visits the current row. @return its bytes, until the next visit.
  std::string_view Visit(const Table& table, const Rows& rows) {
    bytes.clear();
    AppendRow(bytes, rows, table, 0);
    visit(table, bytes);
    return bytes;
  }
  void VisitAll(const Table& table, Rows& rows) {
    while (rows.Next()) {
      Visit(table, rows);
    }
  }

 private:
  const RowVisitor& visit;
  std::string bytes;
};

class Copier {
 public:
  Copier(const Reader& from, Writer& to, const Database& target, const RowVisitor& visit)
      : from(from), to(to), kind(target.kind), target(MakeCopyTarget(to, target)), visits(visit) {}

  // A new store has recorded when it was made, and its own guid.
  bool IsTargetNew() {
    for (const Table& table : Tables()) {
      const long long rows = to.Sql().Find<long long>("SELECT COUNT(*) FROM " + table.name).value();
      const auto ofANew = table.name == history ? VersionEntries(0).size() : table.name == identity ? 1 : 0;
      if (rows != static_cast<long long>(ofANew)) {
        return false;
      }
    }
    return true;
  }

  // A copy has the history and the identity of its source instead of its own.
  void Fill() {
    target->Fill([this] {
      if (!IsTargetNew()) {
        throw Error("'" + to.Name() + "' was empty, and a host began to record into it; expected no host there");
      }
      to.Sql().RunScript(std::string("DELETE FROM ") + history + "; DELETE FROM " + identity);
      filling = true;
      CopyAll();
      to.Sql().RunScript(Running::fill);
      target->ContinueNumbers();
    });
    target->Finish();
  }

  void Continue() {
    CopyAll();
    target->ContinueNumbers();
    target->Finish();
  }

 private:
  static constexpr const char* history = "ts_schema";
  static constexpr const char* identity = "stores";

  void CopyAll() {
    for (const Table& table : TablesBesideEvents()) {
      CopyTable(table);
    }
    CopyEvents();
  }

  void InTransaction(const std::function<void()>& work) {
    if (filling) {
      work();
      return;
    }
    Transaction transaction(to);
    work();
    transaction.Commit();
  }

  /// The highest key of a table; for an empty table, a number below every key.
  long long HighestKey(const Table& table) {
    const auto highest = to.Sql().Find<std::optional<long long>>("SELECT MAX(" + table.Key() + ") FROM " + table.name);
    return highest.value().value_or(beforeAll);
  }

  /// Copies rows until there are enough for a transaction, or no more.
  /// @return the key up to which no row is left.
  long long CopyPortion(const Table& table, Rows& rows, RowWriter& writer, bool& more) {
    long long last = beforeAll;
    for (int count = 0; more && count < rowsInATransaction; ++count, more = rows.Next()) {
      last = rows.Integer(0);
      writer.Add(rows, visits.Visit(table, rows));
    }
    writer.Flush();
    return more ? last : afterAll;
  }

  std::unique_ptr<RowWriter> RowsOf(const Table& table) { return MakeRowWriter(kind, to.Sql(), table, 0); }

  void CopyTable(const Table& table) {
    const long long highest = HighestKey(table);
    const auto writer = RowsOf(table);
    Rows rows(from, RowsBetween(table));
    visits.VisitAll(table, rows.Ask(beforeAll, highest));
    rows.Ask(highest, afterAll);
    for (bool more = rows.Next(); more;) {
      InTransaction([&] { CopyPortion(table, rows, *writer, more); });
    }
  }

  // Events and their parameters are in one transaction: after an interruption no event lacks its parameters.
  void CopyEvents() {
    const Table& eventTable = TableNamed("events");
    const Table& parameterTable = TableNamed("parameters");
    const auto events = RowsOf(eventTable);
    const auto parameters = RowsOf(parameterTable);
    Rows rows(from, RowsBetween(eventTable));
    Rows theirs(from, RowsBetween(parameterTable));
    long long done = HighestKey(eventTable);
    visits.VisitAll(eventTable, rows.Ask(beforeAll, done));
    visits.VisitAll(parameterTable, theirs.Ask(beforeAll, done));
    bool more = rows.Ask(done, afterAll).Next();
    do {
      InTransaction([&] {
        const long long before = done;
        done = CopyPortion(eventTable, rows, *events, more);
        for (theirs.Ask(before, done); theirs.Next();) {
          parameters->Add(theirs, visits.Visit(parameterTable, theirs));
        }
        parameters->Flush();
      });
    } while (more);
  }

  const Reader& from;
  Writer& to;
  const Database::Kind kind;
  const std::unique_ptr<CopyTarget> target;
  Visits visits;
  bool filling = false;
};

}  // namespace

void ExpectThisVersion(const Reader& store) {
  if (const int version = store.SchemaVersion(); version != schemaVersion) {
    throw Error("TS store '" + store.Name() + "' has a schema of version " + std::to_string(version) +
                "; expected version " + std::to_string(schemaVersion) +
                (version < schemaVersion ? ": run velora-ts prepare first" : ": a newer program made it"));
  }
}

void CopyRows(const Reader& from, const Database& target, const RowVisitor& visit) {
  const auto to = OpenForWriting(target);
  ExpectThisVersion(Reader(target));
  Copier copier(from, *to, target, visit);
  if (copier.IsTargetNew()) {
    copier.Fill();
  } else {
    ExpectBeginning(from, Reader(target));
    copier.Continue();
  }
}

void VisitRows(const Reader& store, const RowVisitor& visit) {
  Visits visits(visit);
  for (const Table& table : Tables()) {
    Rows rows(store, RowsBetween(table));
    visits.VisitAll(table, rows.Ask(beforeAll, afterAll));
  }
}

}  // namespace Velora::Store
