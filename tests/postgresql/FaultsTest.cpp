// Whatever becomes of the server and its connections, an operation is told soon, and nothing is lost or there twice.

#include "Interruptions.h"
#include "Server.h"
#include "durability/Comparison.h"
#include "durability/OnServer.h"
#include "durability/Recording.h"
#include "support/Proxy.h"

#include <signal.h>
#include <sys/mount.h>

#include <chrono>
#include <memory>

namespace {

using namespace Quor::TolvaServices;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds longest{20};  // without a limit an operation takes minutes

/// A server with a database in which the records can be compared with what was told.
class Faults : public PostgreSql {
 protected:
  Faults() { Sql(forComparison); }

  /// A host with an empty store of its own.
  Recording Begin(const std::string& schema) {
    where = "dbname=postgres options=-csearch_path=" + schema + ",public";
    Sql("CREATE SCHEMA " + schema);
    PrepareFolder(folder / schema, "Backend='postgresql' Connection='" + where + "'");
    told = {};
    return {folder / schema, schema, [this](const std::string& record) { told.announced.insert(record); },
            [this](const std::string& record) { told.acknowledged.insert(record); }};
  }

  /// What the next record's saving raises: empty for nothing.
  std::string ErrorOfNext(Recording& recording) const {
    const Clock::time_point start = Clock::now();
    std::string error;
    try {
      recording.Next();
    } catch (const TsError& raised) {
      error = raised.what();
      EXPECT_NE(error.find("TS database 'postgres on "), std::string::npos) << error;
    }
    EXPECT_LT(Clock::now() - start, longest) << error;
    return error;
  }

  void ExpectAllThereOnce() const {
    Velora::Store::PostgreSqlConnection sql(where);
    EXPECT_EQ(StoredRecords(sql), told.acknowledged);
  }

  static constexpr int records = 10;  // each kind, once with what comes before it and once without

  const Server server{folder / "server"};
  std::string where;
  Told told;
};

TEST_F(Faults, AConnectionThatEndsBeforeAnyStatementIsAnErrorOfThatOperationAlone) {
  int statements = 0;
  int harmless = 0;  // of the connection that holds the lock
  for (int ended = 0; ended <= statements; ++ended) {
    if (ended == 1) {
      continue;  // the database layer's own while it connects, which then leaks what it had
    }
    SCOPED_TRACE("before statement " + std::to_string(ended) + " of " + std::to_string(statements));
    Recording recording = Begin("ended_" + std::to_string(ended));
    TheInterruptions() = {ended, nullptr, 0};
    int errors = 0;
    while (told.acknowledged.size() < records) {
      const std::string error = ErrorOfNext(recording);
      errors += error.empty() ? 0 : 1;
      EXPECT_TRUE(error.empty() || error.find("was lost before this record was stored") != std::string::npos) << error;
    }
    EXPECT_LE(errors, ended == 0 ? 0 : 1);
    harmless += ended != 0 && errors == 0 ? 1 : 0;
    statements = ended == 0 ? TheInterruptions().statements : statements;
    TheInterruptions() = {};
    ExpectAllThereOnce();
  }
  EXPECT_EQ(harmless, 4);
}

TEST_F(Faults, ACommitWhoseAnswerIsLostIsAskedAfter) {
  Recording recording = Begin("lost");
  EXPECT_EQ(ErrorOfNext(recording), "");  // which makes the store first
  while (told.acknowledged.size() < records) {
    TheInterruptions().atCommit = LoseAnswer;
    EXPECT_EQ(ErrorOfNext(recording), "");
    EXPECT_FALSE(TheInterruptions().atCommit);
  }
  ExpectAllThereOnce();
}

// After a crash the server gives the number of a transaction that it forgot to another.
TEST_F(Faults, ACommitThatACrashTookBackIsNotTakenForAnothersOfTheSameNumber) {
  Recording recording = Begin("taken_back");
  while (told.acknowledged.size() < records) {
    EXPECT_EQ(ErrorOfNext(recording), "");
    TheInterruptions().atCommit = [](PGconn* connection) {
      kill(PQbackendPID(connection), SIGKILL);
      for (int others = 0; others < 20;) {  // not through the database layer, which leaks what ends while it connects
        const std::unique_ptr<PGconn, decltype(&PQfinish)> other(PQconnectdb("dbname=postgres"), &PQfinish);
        const std::unique_ptr<PGresult, decltype(&PQclear)> answer(PQexec(other.get(), "SELECT pg_current_xact_id()"),
                                                                   &PQclear);
        others += PQresultStatus(answer.get()) == PGRES_TUPLES_OK ? 1 : 0;
      }
    };
    EXPECT_THROW(recording.Next(), TsError);
    ExpectAllThereOnce();
  }
}

TEST_F(Faults, AHostGoesOnWithoutARestartOnceTheServerIsBack) {
  Recording recording = Begin("restarted");
  while (told.acknowledged.size() < records) {
    EXPECT_EQ(ErrorOfNext(recording), "");
    server.Crash();
    if (told.acknowledged.size() % 2 == 0) {  // and notices, or not
      EXPECT_NE(ErrorOfNext(recording).find("cannot be reached"), std::string::npos);
      EXPECT_FALSE(Types::TSInstance::IsConnectable());
    }
    server.Resume();
  }
  ExpectAllThereOnce();
}

TEST_F(Faults, ANetworkThatStallsHoldsAnOperationUpForSecondsOnly) {
  Proxy proxy(folder / "proxy", server.folder);
  setenv("PGHOST", (folder / "proxy").c_str(), 1);
  Recording recording = Begin("stalled");
  EXPECT_EQ(ErrorOfNext(recording), "");
  proxy.stalls = true;
  EXPECT_NE(ErrorOfNext(recording).find("was lost before this record was stored: it gave no answer in time"),
            std::string::npos);
  EXPECT_NE(ErrorOfNext(recording).find("cannot be reached"), std::string::npos);
  proxy.GoOn();
  EXPECT_EQ(ErrorOfNext(recording), "");
  TheInterruptions().atCommit = [&proxy](PGconn*) { proxy.stalls = true; };
  EXPECT_NE(ErrorOfNext(recording).find("the record may be stored or not"), std::string::npos);
  proxy.GoOn();
  EXPECT_EQ(ErrorOfNext(recording), "");
  ExpectAllThereOnce();
}

// As a standby that took its place would, another server says of a number of its own that it was committed.
TEST_F(Faults, ACommitIsBelievedOfTheVeryServerOnly) {
  const Server other(folder / "other");
  Sql("DO $$ BEGIN FOR number IN 1..5000 LOOP PERFORM pg_current_xact_id(); COMMIT; END LOOP; END $$");
  Proxy proxy(folder / "proxy", server.folder);
  setenv("PGHOST", (folder / "proxy").c_str(), 1);
  Recording recording = Begin("replaced");
  EXPECT_EQ(ErrorOfNext(recording), "");
  TheInterruptions().atCommit = [&](PGconn*) { proxy.LeadTo(other.folder); };
  EXPECT_NE(ErrorOfNext(recording).find("the record may be stored or not"), std::string::npos);
  proxy.LeadTo(server.folder);
  EXPECT_EQ(ErrorOfNext(recording), "");
  ExpectAllThereOnce();
}

/// A server whose disk is small.
class SmallDisk {
 public:
  explicit SmallDisk(const std::filesystem::path& place) : place(place) {
    create_directory(place);
    mounted = mount("tmpfs", place.c_str(), "tmpfs", 0, "size=120m,mode=0755") == 0;
  }
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;
  ~SmallDisk() { umount2(place.c_str(), MNT_DETACH); }

  const std::filesystem::path place;
  bool mounted = false;
};

TEST_F(PostgreSql, AFullDiskIsAnErrorAndTheHostGoesOnWhenThereIsRoom) {
  const SmallDisk disk(folder / "disk");
  if (!disk.mounted) {
    GTEST_SKIP() << "no small disk can be made by an ordinary user";
  }
  const Server server(disk.place / "server");
  PrepareFolder(folder / "host", "Backend='postgresql' Connection='dbname=postgres'");
  Types::TSInstance::SetTsalPath((folder / "host").string());
  std::ofstream(disk.place / "in the way") << std::string(20'000'000, 'x');
  Types::TSInstance::BeginSession();
  int acknowledged = 0;
  const auto save = [&] {
    std::string noise(1'000'000, ' ');  // which the server cannot make smaller
    for (std::uint32_t at = 0, state = 1; at < noise.size(); ++at) {
      noise[at] = static_cast<char>('0' + ((state = state * 1664525U + 1013904223U) >> 26U));
    }
    const auto parameter = std::make_shared<Types::InstrumentParameterString>("noise", noise);
    Methods::LoggingMethods::SaveEvent({std::to_string(acknowledged), {}, {parameter}, {}, {}}, Types::Tsid(), nullptr,
                                       false, Types::SessionHandle::Empty);
    ++acknowledged;
  };
  std::string error;
  Clock::time_point start;
  while (error.empty() && acknowledged < 200) {
    start = Clock::now();
    try {
      save();
    } catch (const TsError& raised) {
      error = raised.what();
    }
  }
  EXPECT_LT(Clock::now() - start, longest);
  EXPECT_NE(error.find("TS database 'postgres on"), std::string::npos) << error;
  std::filesystem::remove(disk.place / "in the way");
  server.Crash();  // where it did not end by itself: the log of its writes may have been what was full
  server.Resume();
  save();
  EXPECT_EQ(Sql("SELECT COUNT(*) || ' ' || COUNT(DISTINCT e.name) || ' ' || SUM(length(value_text)) FROM events e "
                "JOIN parameters p USING (event_id)"),
            std::to_string(acknowledged) + " " + std::to_string(acknowledged) + " " +
                std::to_string(acknowledged * 1'000'000));
}

}  // namespace
