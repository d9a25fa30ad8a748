// What comes to the facility is what was recorded, whatever happens on the way; what cannot be is refused in words.

#include "store/forwarding/Forwarder.h"

#include "Instrument.h"
#include "postgresql/Interruptions.h"
#include "postgresql/Server.h"
#include "store/database/DatabaseError.h"
#include "store/recording/Preparation.h"
#include "store/schema/StoreNumbers.h"
#include "support/Patterns.h"
#include "support/Query.h"

#include <chrono>
#include <functional>
#include <thread>

namespace {

using namespace Velora::Store;

class Forwarding : public PostgreSql {
 protected:
  Forwarding() {
    Sql("CREATE ROLE owner LOGIN; CREATE ROLE host LOGIN");
    Sql("CREATE DATABASE facility OWNER owner");
    PrepareStore({Database::Kind::PostgreSql, "dbname=facility user=owner"}, "host");
  }

  static std::string AtFacility(const std::string& statements) {
    return Sql("SET session_replication_role = replica; " + statements, "dbname=facility");
  }

  /// Forwards until nothing is left, over each connection that is lost. @return how many rows.
  static long long SendAll(Forwarder& forwarder) {
    long long rows = 0;
    for (bool done = false; !done;) {
      try {
        const Forwarder::Progress progress = forwarder.SendNext();
        rows += progress.rows;
        done = progress.left.rows == 0;
      } catch (const Refused&) {
        throw;
      } catch (const Error&) {  // the server can still have the lock of the connection that was lost
        EXPECT_EQ(
            AtFacility("SELECT COUNT(*) FROM executions LEFT JOIN statuses USING (execution_id) WHERE code IS NULL"),
            "0");
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
      }
    }
    return rows;
  }
  /// Expects the same rows on both sides.
  static void ExpectSame(Connection& file) {
    const std::string guid = Query(file, "SELECT guid FROM stores");
    const long long shift =
        std::stoll(AtFacility("SELECT store_id - 1 FROM stores WHERE guid = '" + guid.substr(0, 36) + "'"));
    PostgreSqlConnection facility("dbname=facility");
    for (const Table& table : Tables()) {
      std::vector<std::string> unshifted;
      for (const Column& column : table.columns) {
        unshifted.push_back(column.name + (column.HoldsKey() ? " - " + std::to_string(shift) : ""));
      }
      const std::string order = " ORDER BY 1, 2";
      EXPECT_TRUE(Query(file, "SELECT " + table.ColumnList() + " FROM " + table.name + order) ==
                  Query(facility, "SELECT " + Listed(unshifted) + " FROM " + table.name + " WHERE " +
                                      IsOfStore(table.Key(), shift / numbersOfAStore) + order))
          << table.name;
    }
  }

  const Server server{folder / "server"};
  const Database facility{Database::Kind::PostgreSql, "dbname=facility user=host"};
  Instrument instrument{folder / "ts.db"};
};

TEST_F(Forwarding, AConnectionThatEndsBeforeAnyStatementLosesNothingAndSendsNothingTwice) {
  int statements = 0;
  for (int ended = 0; ended <= statements; ++ended) {
    if (ended == 1) {
      continue;  // the database layer's own while it connects
    }
    SCOPED_TRACE("before statement " + std::to_string(ended) + " of " + std::to_string(statements));
    Instrument another(folder / (std::to_string(ended) + ".db"));
    another.Record(50);
    Forwarder forwarder(another.Where(), facility);
    TheInterruptions() = {ended, nullptr, 0};
    SendAll(forwarder);
    another.Record(20);
    another.Seal();
    SendAll(forwarder);
    statements = ended == 0 ? TheInterruptions().statements : statements;
    TheInterruptions() = {};
    ExpectSame(*another.sql);
  }
  EXPECT_GT(statements, 40);
}

TEST_F(Forwarding, ACommitWhoseAnswerIsLostIsSeenInTheRows) {
  Forwarder forwarder(instrument.Where(), facility);
  for (int time = 0; time < 3; ++time) {  // the first one makes the number of the store
    instrument.Record(20);
    TheInterruptions().atCommit = LoseAnswer;
    SendAll(forwarder);
    EXPECT_FALSE(TheInterruptions().atCommit);
    ExpectSame(*instrument.sql);
  }
}

// The marks go back with the server.
TEST_F(Forwarding, AServerThatWasRestoredGetsAgainWhatItLacks) {
  Forwarder forwarder(instrument.Where(), facility);
  instrument.Record(300);
  SendAll(forwarder);
  AtFacility(
      "DELETE FROM parameters WHERE event_id > 20000000050; DELETE FROM events WHERE event_id > 20000000050; DELETE "
      "FROM notes; DELETE FROM statuses WHERE status_id > 20000000030; DELETE FROM executions WHERE execution_id > "
      "20000000040");
  instrument.Record(1);
  EXPECT_GT(SendAll(forwarder), 100);
  ExpectSame(*instrument.sql);
}

TEST_F(Forwarding, EachOfTwoInstrumentsOfOneNameHasOneForwarderAndIsHeard) {
  Instrument another(folder / "another.db");
  auto one = std::make_unique<Forwarder>(instrument.Where(), facility);
  Forwarder second(instrument.Where(), facility);
  Forwarder other(another.Where(), facility);
  for (Instrument* const recording : {&instrument, &another}) {
    recording->Record(100);
  }
  SendAll(other);
  SendAll(*one);
  EXPECT_THROW(second.SendNext(), AnotherForwarder);
  one.reset();
  instrument.Record(10);
  EXPECT_GE(SendAll(second), 10);
  EXPECT_EQ(second.SendNext().rows, 0);
  ExpectSame(*instrument.sql);
  ExpectSame(*another.sql);
  EXPECT_EQ(AtFacility("SELECT string_agg(CAST(store AS text) || waiting, ' ' ORDER BY store) FROM arrivals"), "20 30");
}

TEST_F(Forwarding, WhatContradictsTheFacilityIsRefusedInWords) {
  struct Row {
    const char* name;
    std::function<void(Instrument&)> before;  // after some rows came
    std::function<void(Instrument&)> after;   // after more rows came
    const char* words;
  };
  const std::filesystem::path copy = folder / "copy.db";
  const auto keep = [&](Instrument& from) { from.CopyTo(copy); };
  const Row rows[] = {
      {"an older copy", keep, [&](Instrument& to) { to.GoBackTo(copy); },
       "' has no row [0-9]+ of .* has from this store: it is an older copy of itself"},
      {"a clone", keep,
       [&](Instrument& to) {
         to.GoBackTo(copy);
         to.Record(400);
       },
       "' has another row [0-9]+ of .* it was copied, and both copies recorded; expected .* velora-ts rotate"},
      {"somebody adds rows at the facility", nullptr,
       [](Instrument& of) {
         AtFacility(
             "INSERT INTO events SELECT MAX(event_id) + 1, MAX(session_id), NULL, NULL, 'forged', '' FROM "
             "events WHERE event_id < " +
             std::to_string(firstMonthlyKey));
         of.Record(10);
       },
       "' has no row|' has another row"},
      {"a parameter of the last event", nullptr,
       [](Instrument& of) { of.sql->RunScript("DROP TRIGGER parameters_no_update; UPDATE parameters SET name = 'q'"); },
       "has another row [0-9]+ of events"},
      {"a text that no host can record", nullptr,
       [](Instrument& of) {
         of.sql->RunScript("INSERT INTO events SELECT NULL, 1, NULL, NULL, CAST(x'c328' AS TEXT), ''");
       },
       "refuses these records: invalid byte sequence"},
      {"another version", nullptr, [](Instrument& of) { of.sql->RunScript("INSERT INTO ts_schema VALUES (-4, '')"); },
       "has a schema of version 4; expected version 3: forward with the newer program"},
      {"a guid of its own", nullptr,
       [](Instrument& of) {
         of.sql->RunScript("DROP TRIGGER stores_no_update; UPDATE stores SET guid = '" + NewGuid() + "'");
       },
       "has the session .*, which .* has from another store: one is a copy"},
  };
  int number = 0;
  for (const Row& row : rows) {
    for (const bool goesOn : {true, false}) {  // or begins anew
      SCOPED_TRACE(row.name);
      Instrument changed(folder / (std::to_string(++number) + ".db"));
      changed.Record(100);
      auto forwarder = std::make_unique<Forwarder>(changed.Where(), facility);
      SendAll(*forwarder);
      row.before ? row.before(changed) : void();
      changed.Record(100);
      changed.sql->RunScript(
          "INSERT INTO events VALUES (NULL, 1, NULL, NULL, 'e', ''); INSERT INTO parameters VALUES "
          "(last_insert_rowid(), 1, 'p', 'int', NULL, 1)");
      SendAll(*forwarder);
      row.after(changed);
      if (!goesOn) {
        forwarder.reset();
        forwarder = std::make_unique<Forwarder>(changed.Where(), facility);
      }
      try {
        SendAll(*forwarder);
        ADD_FAILURE() << "nothing was refused";
      } catch (const Refused& refused) {
        EXPECT_NE(ReplaceMatches(refused.what(), row.words, ""), refused.what());
      }
    }
  }
}

}  // namespace
