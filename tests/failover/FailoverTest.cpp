// A server that is killed under its hosts, and the standby that takes its place.

#include "durability/Comparison.h"
#include "durability/Host.h"
#include "durability/OnServer.h"
#include "durability/Recording.h"
#include "postgresql/Interruptions.h"
#include "postgresql/Server.h"
#include "support/Program.h"
#include "support/Proxy.h"
#include "support/TestStore.h"

#include <dlfcn.h>
#include <netdb.h>

#include <chrono>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <thread>

namespace {

std::map<std::string, int> slowNames;  // that were asked for, and how often

}  // namespace

// Takes the place of the system's: names that begin so are those of this computer, after a while.
extern "C" [[gnu::visibility("default")]] int getaddrinfo(const char* name, const char* service, const addrinfo* wanted,
                                                          addrinfo** found) {
  if (name != nullptr && std::string(name).starts_with("slow.")) {
    ++slowNames[name];
    std::this_thread::sleep_for(std::chrono::milliseconds(1600));
    name = "127.0.0.1";
  }
  return reinterpret_cast<decltype(&getaddrinfo)>(dlsym(RTLD_NEXT, "getaddrinfo"))(name, service, wanted, found);
}

namespace {

using namespace Quor::TolvaServices;
using Clock = std::chrono::steady_clock;

class Failover : public PostgreSql {
 protected:
  Failover() { Sql(forComparison); }

  static std::string At(const Server& server) { return "host=" + server.folder.string() + " dbname=postgres"; }
  /// Makes commits wait for the standby.
  static void ExpectStandby() {
    Sql("ALTER SYSTEM SET synchronous_standby_names = '*'");
    Sql("SELECT pg_reload_conf()");
    for (int look = 0; look < 3000 && Sql("SELECT string_agg(sync_state, '') FROM pg_stat_replication") != "sync";
         ++look) {
      usleep(20'000);
    }
  }
  Recording Begin(const std::string& where) {
    PrepareFolder(folder / "host", "Backend='postgresql' Connection='" + where + "'");
    return {folder / "host", "a host", [this](const std::string& record) { told.announced.insert(record); },
            [this](const std::string& record) { told.acknowledged.insert(record); }};
  }
  static std::string ErrorOfNext(Recording& recording, std::chrono::seconds longest = std::chrono::seconds(12)) {
    const Clock::time_point start = Clock::now();
    std::string error;
    try {
      recording.Next();
    } catch (const TsError& raised) {
      error = raised.what();
    }
    EXPECT_LT(Clock::now() - start, longest) << error;
    return error;
  }

  const Server primary{folder / "primary"};
  Told told;
};

/// How many hosts: few in a run of all tests, more by hand.
int HostsOfTest() {
  const char* const given = std::getenv("VELORA_FAILOVER_HOSTS");
  return given == nullptr ? 6 : std::atoi(given);
}

/// A host that records into a file, and the forwarder of that file.
struct Instrument {
  Instrument(const std::filesystem::path& folder, const std::string& facility) : folder(folder) {
    PrepareFolder(folder, "Backend='sqlite3' Connection='ts.db'/><Forward Connection='" + facility + "'");
    host.emplace(folder, folder.filename().string(), 60, "calm");
    forwarder.emplace("'" VELORA_TS "' forward --follow --config '" + folder.string() + "'", folder / "forwarder.log");
  }
  bool HasArrived(const std::string& facility, const Told& told) const {
    Velora::Store::PostgreSqlConnection sql(facility);
    return CompareRecords(StoredRecords(sql), {told.announced, StoredRecords(folder / "ts.db")}).lost == 0;
  }

  const std::filesystem::path folder;
  std::optional<Host> host;
  std::optional<Program> forwarder;
};

TEST_F(Failover, HostsAndForwardersGoOnAtTheStandbyThatWasPromoted) {
  for (const bool synchronous : {true, false}) {
    SCOPED_TRACE(synchronous ? "synchronous" : "asynchronous");
    const Server first(folder / "first", "copy", primary);
    setenv("PGHOST", first.folder.c_str(), 1);
    const Server second(folder / "second", "standby", first);
    if (synchronous) {
      ExpectStandby();
    }
    const std::string either = "host=" + first.folder.string() + "," + second.folder.string() +
                               " dbname=postgres target_session_attrs=read-write";
    PrepareFolder(folder / "hosts", "Backend='postgresql' Connection='" + either + "'");
    std::deque<Host> hosts;
    for (int number = 0; number < HostsOfTest(); ++number) {
      hosts.emplace_back(folder / "hosts", "host" + std::to_string(number), 60, "on");
    }
    const auto all = [&hosts](std::size_t more) {
      std::deque<std::size_t> enough;
      for (const Host& host : hosts) {
        enough.push_back(host.Acknowledged() + more);
      }
      for (std::size_t at = 0, look = 0; at < hosts.size() && look < 6000; ++look) {
        hosts[at].Acknowledged() < enough[at] ? static_cast<void>(usleep(10'000)) : static_cast<void>(++at);
      }
      for (std::size_t at = 0; at < hosts.size(); ++at) {
        EXPECT_GE(hosts[at].Acknowledged(), enough[at]) << "host " << at << " does not go on";
      }
    };
    all(20);
    std::deque<Instrument> instruments;
    for (const std::string scope : {"one", "two"}) {
      instruments.emplace_back(folder / (scope + (synchronous ? " synchronous" : "")), either);
    }
    all(20);
    first.Crash();
    second.Promote();
    if (synchronous) {  // nobody follows the second one
      Sql("ALTER SYSTEM RESET synchronous_standby_names", At(second));
      Sql("SELECT pg_reload_conf()", At(second));
    }
    all(20);
    told = {};
    for (Host& host : hosts) {
      EXPECT_TRUE(host.Kill());
      told.announced.insert(host.told.announced.begin(), host.told.announced.end());
      told.acknowledged.insert(host.told.acknowledged.begin(), host.told.acknowledged.end());
    }
    for (Instrument& instrument : instruments) {
      EXPECT_TRUE(instrument.host->Kill());
      told.announced.insert(instrument.host->told.announced.begin(), instrument.host->told.announced.end());
    }
    for (const Instrument& instrument : instruments) {
      for (int look = 0; look < 1200 && !instrument.HasArrived(At(second), told); ++look) {
        usleep(100'000);
      }
      EXPECT_TRUE(instrument.HasArrived(At(second), told)) << ContentOf(instrument.folder / "forwarder.log");
      EXPECT_EQ(Compare(instrument.folder, instrument.host->told).text, "");
    }
    Velora::Store::PostgreSqlConnection sql(At(second));
    const Findings findings = CompareRecords(StoredRecords(sql), told);
    EXPECT_EQ(findings.half, 0U) << findings.text;
    std::cout << hosts.size() << " hosts, " << (synchronous ? "synchronous" : "asynchronous") << ": "
              << told.acknowledged.size() << " records acknowledged, " << findings.lost << " of them lost" << std::endl;
    if (synchronous) {
      EXPECT_EQ(findings.lost, 0U) << findings.text;
      EXPECT_EQ(Sql("SELECT COUNT(DISTINCT text1) FROM sessions WHERE session_id < 10000000000", At(second)),
                std::to_string(hosts.size()));
    }
    setenv("PGHOST", primary.folder.c_str(), 1);
  }
}

TEST_F(Failover, ServersShareTheTimeOfAnOperationAndOneThatOnlyReadsIsPassedOver) {
  Recording first = Begin("dbname=postgres");
  EXPECT_EQ(ErrorOfNext(first, std::chrono::seconds(40)), "");  // makes the store, which may take longer
  const Server standby(folder / "standby", "standby", primary);
  Proxy silent(folder / "silent", primary.folder);
  silent.stalls = true;
  const std::string gone = (folder / "gone").string();
  const std::string mute = (folder / "silent").string();
  const std::string reads = standby.folder.string();
  const std::string writes = primary.folder.string();
  const std::string wanted = " target_session_attrs=read-write";
  const std::tuple<std::string, std::string> rows[] = {
      {mute + "," + mute + "," + mute + "," + writes, ""},
      {gone + "," + writes + "," + mute, ""},
      {mute + "," + gone + "," + mute + "," + mute,
       "\" failed: timeout expired; connection to server on socket \"" + gone},
      {"slow.1,slow.2,slow.3 port=1", "slow.3\" to address: timeout expired"},
      {"slow.4,slow.4," + writes + " port=1,1,5432", ""},
      {reads + "," + writes + wanted, ""},
      {mute + "," + reads + "," + writes + wanted, ""},
      {reads + "," + reads + wanted, "session is read-only; connection to server"},
      {reads + "," + writes,
       "a standby, which only reads; expected the primary (if Connection names several servers, "
       "target_session_attrs=read-write finds it)"},
  };
  for (const auto& [hosts, words] : rows) {
    SCOPED_TRACE(hosts);
    Recording recording = Begin("dbname=postgres host=" + hosts);
    const std::string error = ErrorOfNext(recording);
    EXPECT_EQ(error.empty(), words.empty()) << error;
    EXPECT_NE(error.find(words), std::string::npos) << error;
  }
  slowNames.erase("slow.4");  // how often depends on how many connections the host made
  EXPECT_EQ(slowNames, (std::map<std::string, int>{{"slow.1", 1}, {"slow.2", 1}}));
}

// In each row, the one who is asked says of another's transaction of the same number that it was committed.
TEST_F(Failover, ACommitIsNotBelievedOfWhoTookThePlaceOfTheServer) {
  const auto commitMany = [](const Server& server) {
    Sql("DO $$ BEGIN FOR number IN 1..5000 LOOP PERFORM pg_current_xact_id(); COMMIT; END LOOP; END $$", At(server));
  };
  for (const std::string how : {"standby", "copy"}) {
    SCOPED_TRACE(how);
    Proxy proxy(folder / ("to-" + how), primary.folder);
    Recording recording = Begin("dbname=postgres host=" + (folder / ("to-" + how)).string() + "," +
                                (folder / how).string() + " target_session_attrs=read-write");
    EXPECT_EQ(ErrorOfNext(recording, std::chrono::seconds(40)), "");
    const Server other(folder / how, how, primary);
    if (how == "standby") {
      other.Promote();
    }
    commitMany(other);
    Sql("SELECT pg_switch_wal()");  // so that the other one has had no checkpoint as late as that
    Sql("SELECT pg_current_xact_id()");
    Sql("SELECT pg_switch_wal()");
    EXPECT_EQ(ErrorOfNext(recording), "");
    TheInterruptions().atCommit = [&](PGconn*) { proxy.LeadTo(other.folder); };
    EXPECT_NE(ErrorOfNext(recording).find("the record may be stored or not"), std::string::npos);
  }
}

TEST_F(Failover, ACommitThatMayNotHaveReachedTheStandbyIsNotAcknowledged) {
  const Server standby(folder / "standby", "standby", primary);
  ExpectStandby();
  Recording recording = Begin("dbname=postgres");
  EXPECT_EQ(ErrorOfNext(recording, std::chrono::seconds(40)), "");
  standby.Crash();
  for (const std::string how : {"cancel", "terminate"}) {
    SCOPED_TRACE(how);
    std::thread administrator([&how] {
      const std::string end = "SELECT COUNT(pg_" + how +
                              "_backend(pid)) FROM pg_stat_activity WHERE wait_event = 'SyncRep' AND query = 'COMMIT'";
      for (int look = 0; look < 3000 && Sql(end) == "0"; ++look) {
        usleep(10'000);
      }
    });
    const std::string error = ErrorOfNext(recording);
    administrator.join();
    EXPECT_NE(error.find("the record may be stored or not"), std::string::npos) << error;
  }
}

}  // namespace
