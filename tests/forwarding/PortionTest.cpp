// Whatever the size of portions, what has come after each of them is a state that the store had, or nearly so.

#include "store/forwarding/Portion.h"

#include "Instrument.h"
#include "store/reading/Reader.h"
#include "support/Query.h"
#include "support/ScratchFolder.h"

#include <gtest/gtest.h>

namespace {

using namespace Velora::Store;

const ScratchFolder folder;

/// What a reader of the rows up to some marks would find wrong; empty for nothing.
std::string WrongUpTo(Connection& file, const Marks& marks, const Marks& from) {
  std::string wrong;
  for (const Table& table : Tables()) {
    const std::string upTo = std::to_string(marks.at(table.primaryKey.empty() ? table.name : "events"));
    if (Query(file, "SELECT COALESCE(MAX(" + table.Key() + "), 0) FROM " + table.name + " WHERE " + table.Key() +
                        " <= " + upTo) != upTo + '\n' &&
        table.primaryKey.empty()) {
      wrong += table.name + " ends with no row; ";
    }
    for (const Column& column : table.columns) {
      if (!column.refersTo.empty() &&
          Query(file, "SELECT COUNT(*) FROM " + table.name + " WHERE " + table.Key() + " <= " + upTo + " AND " +
                          column.name + " > " + std::to_string(marks.at(column.refersTo))) != "0\n") {
        wrong += table.name + '.' + column.name + " refers to what has not come; ";
      }
    }
  }
  if (Query(file,
            "SELECT COUNT(*) FROM statuses s JOIN events e USING (execution_id) WHERE code <> 4 AND status_id <= " +
                std::to_string(marks.at("statuses")) + " AND event_id > " + std::to_string(marks.at("events"))) !=
      "0\n") {
    wrong += "a final status came before an event; ";
  }
  for (const char* const last : {"notes", "seals"}) {
    for (const char* const covered : {"ts_schema", "sessions", "registrations", "executions", "statuses", "events"}) {
      if (marks.at(last) > from.at(last) &&
          Query(file, "SELECT MAX(rowid) FROM " + std::string(covered)) != std::to_string(marks.at(covered)) + '\n') {
        wrong += std::string(last) + " came before " + covered + "; ";
      }
    }
  }
  return wrong;
}

TEST(Portions, OfAnySizeLeaveAStateThatTheStoreHad) {
  Instrument instrument(folder / "portions.db");
  instrument.Record(500);
  instrument.BeginRuns(100);
  instrument.sql->RunScript(
      "INSERT INTO events VALUES (5000, 1, (SELECT MAX(execution_id) FROM executions), NULL, 'behind a gap', '')");
  instrument.Seal();
  const Reader file(instrument.Where());
  const Marks all = MarksOf(file);
  for (const long long size : {1, 2, 7, 50, 5000}) {
    Marks reached;
    for (const auto& [table, mark] : all) {
      reached[table] = 0;
    }
    long long portions = 0;
    for (long long rows = -1; rows != 0; ++portions) {
      const Portion portion = ReadPortion(file, reached, size, 0);
      rows = portion.rows;
      EXPECT_LE(rows, size * 30);
      EXPECT_EQ(WrongUpTo(*instrument.sql, portion.upTo, reached), "") << size << ' ' << portion.upTo.at("events");
      reached = portion.upTo;
    }
    EXPECT_EQ(reached, all);
    EXPECT_EQ(portions == 2, size == 5000) << "all that is new, and then nothing";
  }
}

}  // namespace
