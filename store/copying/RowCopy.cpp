#include "store/copying/RowCopy.h"

#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/recording/Writer.h"
#include "store/schema/Tables.h"
#include "store/transfer/RowBytes.h"
#include "store/transfer/RowWriter.h"

#include <algorithm>
#include <array>
#include <optional>

namespace Velora::Store {
namespace {

constexpr int rowsInATransaction = 5000;
// So no execution has its final status, and no seal is there, before the events.
constexpr std::array lastTables = {"statuses",   "notes",      "seals",     "tree_leaves",
                                   "tree_parts", "signatures", "timestamps"};
constexpr long long beforeAll = Keys{}.before;
constexpr long long afterAll = Keys{}.last;

/// A question for the rows of a table behind a key and up to another.
std::string RowsBetween(const Table& table) {
  const std::string& key = table.Key();
  return "SELECT " + table.ColumnList() + " FROM " + table.name + " WHERE " + key + " > ?1 AND " + key +
         " <= ?2 ORDER BY " + (table.primaryKey.empty() ? key : Listed(table.primaryKey));
}

}  // namespace

void VisitRows(const Reader& store, const Keys& keys, const RowVisitor& visit, long long shift) {
  std::string bytes;
  for (const Table& table : Tables()) {
    Rows rows(store, RowsBetween(table));
    for (rows.Ask(keys.before, keys.last); rows.Next();) {
      bytes.clear();
      AppendRow(bytes, rows, table, shift);
      visit(table, bytes);
    }
  }
}

RowCopy::RowCopy(const Reader& from, Writer& to, Database::Kind kind, const Keys& keys, const RowVisitor& visit)
    : from(from), to(to), kind(kind), keys(keys), visit(visit) {}

void RowCopy::CopyAll() {
  for (const Table& table : TablesBesideEvents()) {
    if (std::find(lastTables.begin(), lastTables.end(), table.name) == lastTables.end()) {
      CopyTable(table);
    }
  }
  CopyEvents();
  for (const char* const name : lastTables) {
    CopyTable(TableNamed(name));
  }
}

void RowCopy::CopyInPortions() {
  inPortions = true;
  CopyAll();
}

void RowCopy::CopyTable(const Table& table) {
  const long long reached = Reached(table);
  const auto writer = MakeRowWriter(kind, to.Sql(), table, keys.shift);
  Rows rows(from, RowsBetween(table));
  VisitAll(table, rows.Ask(beforeAll, reached));
  rows.Ask(reached, afterAll);
  for (bool more = rows.Next(); more;) {
    InTransaction([&] { CopyPortion(table, rows, *writer, more); });
  }
}

// Events and their parameters are in one transaction: after an interruption no event lacks its parameters.
void RowCopy::CopyEvents() {
  const Table& eventTable = TableNamed("events");
  const Table& parameterTable = TableNamed("parameters");
  const auto events = MakeRowWriter(kind, to.Sql(), eventTable, keys.shift);
  const auto parameters = MakeRowWriter(kind, to.Sql(), parameterTable, keys.shift);
  Rows rows(from, RowsBetween(eventTable));
  Rows theirs(from, RowsBetween(parameterTable));
  long long done = Reached(eventTable);
  VisitAll(eventTable, rows.Ask(beforeAll, done));
  VisitAll(parameterTable, theirs.Ask(beforeAll, done));
  bool more = rows.Ask(done, afterAll).Next();
  do {
    InTransaction([&] {
      const long long before = done;
      done = CopyPortion(eventTable, rows, *events, more);
      for (theirs.Ask(before, done); theirs.Next();) {
        parameters->Add(theirs, Visit(parameterTable, theirs));
      }
      parameters->Flush();
    });
  } while (more);
}

void RowCopy::InTransaction(const std::function<void()>& work) {
  if (!inPortions) {
    work();
    return;
  }
  Transaction transaction(to);
  work();
  transaction.Commit();
}

long long RowCopy::Reached(const Table& table) {
  const std::string& key = table.Key();
  const auto highest = to.Sql().Find<std::optional<long long>>(
      "SELECT MAX(" + key + ") FROM " + table.name + " WHERE " + key + " > ?1 AND " + key + " <= ?2", keys.before,
      keys.last);
  return highest.value().value_or(keys.before) - keys.shift;
}

/// Copies rows until there are enough for a transaction, or no more.
/// @return the number up to which no row is left.
long long RowCopy::CopyPortion(const Table& table, Rows& rows, RowWriter& writer, bool& more) {
  long long last = beforeAll;
  for (int count = 0; more && count < rowsInATransaction; ++count, more = rows.Next()) {
    last = rows.Integer(0);
    writer.Add(rows, Visit(table, rows));
  }
  writer.Flush();
  return more ? last : afterAll;
}

/// Visits the current row. @return its bytes, until the next visit.
std::string_view RowCopy::Visit(const Table& table, const Rows& rows) {
  bytes.clear();
  AppendRow(bytes, rows, table, keys.shift);
  visit(table, bytes);
  return bytes;
}

void RowCopy::VisitAll(const Table& table, Rows& rows) {
  while (rows.Next()) {
    Visit(table, rows);
  }
}

}  // namespace Velora::Store
