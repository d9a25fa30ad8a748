// Whether the host of a run on a server lives, as a reader says it and as the server's table of locks shows it.

#include "Server.h"
#include "durability/Recording.h"
#include "store/reading/Hosts.h"
#include "store/reading/Reader.h"
#include "store/reading/Runs.h"
#include "store/recording/Preparation.h"
#include "support/Process.h"
#include "support/Shell.h"

#include <functional>
#include <thread>

namespace {

namespace Store = Velora::Store;
using namespace Quor::TolvaServices;

class HostsOnServer : public WithShell<PostgreSql> {
 protected:
  HostsOnServer() { Configure("velora"); }
  void Configure(const std::string& role) const {
    PrepareFolder(folder / "host", "Backend='postgresql' Connection='" + As(role) + "'");
  }
  static std::string As(const std::string& role) { return "dbname=postgres user=" + role; }

  void Begin() const {
    Types::TSInstance::SetTsalPath((folder / "host").string());
    Types::TSInstance::BeginSession();
  }
  /// Begins a session and an execution that does not finish.
  void Run() const {
    Begin();
    Save();
  }
  static void Save(const Types::ActivityExecution* parent = nullptr) {
    Types::ActivityExecution execution;
    execution.Node = "a run";
    execution.Parent = parent;
    execution.Status = {Types::Enums::ActivityExecStatus(4), Types::DateTimeOffset::FromMicroseconds(1)};
    Methods::ActivityMethods::SaveActivityExecution(execution, Types::SessionHandle::Empty);
  }
  /// What is said of the first run, and how many locks the server shows.
  static std::string Said() {
    const Store::Reader reader({Store::Database::Kind::PostgreSql, "dbname=postgres"});
    const std::vector<Store::Run> runs = RunsBetween(reader, "", "3");
    return runs.empty() ? "none" : NameOf(Store::Hosts(reader).Of(runs.front()).state) + (", locks: " + Locks());
  }
  /// "stopped running": what a role is told of the executions of each run, in the order of recording.
  static std::string SaidTo(const std::string& role) {
    const Store::Reader reader({Store::Database::Kind::PostgreSql, As(role)});
    Store::Hosts hosts(reader);
    std::string said;
    for (const Store::Run& run : RunsBetween(reader, "", "3")) {
      for (const Store::UnfinishedExecution& one : hosts.UnfinishedOf(run)) {
        said += (said.empty() ? "" : " ") + std::string(NameOf(one.known.state));
      }
      said += std::string(" (") + NameOf(hosts.Of(run).state) + ')';
    }
    return said;
  }
  void Restart() const {
    server.Crash();
    server.Resume();
  }
  static std::string Locks() {
    return Sql(
        "SELECT COUNT(*) FROM pg_locks WHERE locktype = 'advisory' AND classid = CAST('session_locks' AS "
        "regclass)");
  }
  /// Waits until the server has noticed what happened to a connection.
  static std::string SaidOnce(const std::string& locks) {
    for (int look = 0; look < 3000 && Locks() != locks; ++look) {
      usleep(20'000);
    }
    return Said();
  }
  static void EndConnectionsWithLocks() {
    Sql("SELECT COUNT(pg_terminate_backend(pid, 5000)) FROM pg_stat_activity WHERE application_name LIKE '%lock%'");
  }

  const Server server{folder / "server"};
};

TEST_F(HostsOnServer, AreToldToLiveAsLongAsTheirProcessDoes) {
  const std::pair<const char*, std::function<void()>> rows[] = {
      {"idles", [] {}},
      {"began another session", [this] { Run(); }},
      {"forked a child that lives on", [] { StartChild(nullptr); }},
      {"started a program that lives on", [] { StartChild("sleep"); }},
      {"lost its connection and recorded again",
       [] {
         EndConnectionsWithLocks();
         Save();
       }},
      {"lived on when the server was restarted, and recorded again",
       [this] {
         Restart();
         Save();
       }},
  };
  for (const auto& [what, act] : rows) {
    SCOPED_TRACE(what);
    const Process host([&, &does = act] {
      Run();
      does();
    });
    EXPECT_EQ(Said(),
              std::string("running, locks: ") + (std::string(what).find("another") == std::string::npos ? "1" : "2"));
    host.Kill();
    EXPECT_EQ(SaidOnce("0"), "stopped, locks: 0");
    Sql("DROP SCHEMA public CASCADE; CREATE SCHEMA public");
  }
}

// A host that idles cannot take its lock again, and does so when it records.
TEST_F(HostsOnServer, AreNotKnownWhenTheServerMayHaveTakenTheirLocksAway) {
  const std::pair<const char*, std::function<void()>> rows[] = {
      {"restarted", [this] { Restart(); }},
      {"the connection ended", [] { EndConnectionsWithLocks(); }},
  };
  for (const auto& [what, act] : rows) {
    SCOPED_TRACE(what);
    const Process host([this] { Run(); });
    EXPECT_EQ(Said(), "running, locks: 1");
    act();
    EXPECT_EQ(SaidOnce("0"), "unknown, locks: 0");
    host.Kill();
    EXPECT_EQ(Said(), "unknown, locks: 0");
    Sql("DROP SCHEMA public CASCADE; CREATE SCHEMA public");
  }
}

TEST_F(HostsOnServer, OfOneRunAreToldApartAndARunIsFollowedUntilTheLastOfThemHasEnded) {
  const Process first([this] { Run(); });
  const Process second([this] {
    Begin();
    const Types::Tsid run(Sql("SELECT guid FROM executions"));
    const Types::ActivityExecution parent = Methods::ActivityMethods::GetActivityExecution(run, true, nullptr);
    Save(&parent);
  });
  std::thread kills([&, file = folder / "told"] {
    const auto tells = [&](const char* words) {
      for (int look = 0; look < 3000 && ContentOf(file).find(words) == std::string::npos; ++look) {
        usleep(20'000);
      }
    };
    tells("following");
    first.Kill();
    EXPECT_EQ(SaidOnce("1"), "running, locks: 1");
    EXPECT_EQ(SaidTo("velora"), "stopped running (running)");
    EXPECT_EQ(ContentOf(file).find("stopped"), std::string::npos);
    second.Kill();
  });
  EXPECT_EQ(Shell("timeout 200 '" VELORA_TS "' tail --config host > told 2>&1"), 1);
  kills.join();
  EXPECT_NE(ContentOf(folder / "told").find("this run has stopped"), std::string::npos);
  EXPECT_EQ(SaidTo("velora"), "stopped stopped (stopped)");
}

// After a restart nobody can see any more that a host had ended before, unless another host has noted it.
TEST_F(HostsOnServer, AreToldToEveryRoleAndStayStoppedIfALaterHostHasNotedIt) {
  Sql("CREATE ROLE host LOGIN; CREATE ROLE reader LOGIN; CREATE ROLE stranger LOGIN");
  Store::PrepareStore({Store::Database::Kind::PostgreSql, As("velora")}, "host");
  Sql("GRANT SELECT ON ALL TABLES IN SCHEMA public TO reader, stranger; REVOKE ALL ON session_locks FROM stranger");
  Configure("host");
  const auto expect = [](const std::string& said) {
    EXPECT_EQ(SaidTo("host"), said);
    EXPECT_EQ(SaidTo("reader"), said);
  };
  const Process first([this] { Run(); });
  expect("running (running)");
  EXPECT_EQ(SaidTo("stranger"), "unknown (unknown)");
  first.Kill();
  SaidOnce("0");
  const Process second([this] { Run(); });
  expect("stopped (stopped) running (running)");
  Restart();
  expect("stopped (stopped) unknown (unknown)");
}

}  // namespace
