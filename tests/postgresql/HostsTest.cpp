// Whether the host of a run on a server lives, as a reader says it and as the server's table of locks shows it.

#include "Server.h"
#include "durability/Recording.h"
#include "store/reading/Hosts.h"
#include "store/reading/Reader.h"
#include "store/reading/Runs.h"
#include "support/Process.h"

#include <functional>

namespace {

namespace Store = Velora::Store;
using namespace Quor::TolvaServices;

class HostsOnServer : public PostgreSql {
 protected:
  HostsOnServer() { PrepareFolder(folder / "host", "Backend='postgresql' Connection='dbname=postgres'"); }

  void Run() const {
    Types::TSInstance::SetTsalPath((folder / "host").string());
    Types::TSInstance::BeginSession();
    Save();
  }
  static void Save() {
    Types::ActivityExecution execution;
    execution.Node = "a run";
    execution.Status = {Types::Enums::ActivityExecStatus(4), Types::DateTimeOffset::FromMicroseconds(1)};
    Methods::ActivityMethods::SaveActivityExecution(execution, Types::SessionHandle::Empty);
  }
  /// What is said of the first run, and how many locks the server shows.
  static std::string Said() {
    const Store::Reader reader({Store::Database::Kind::PostgreSql, "dbname=postgres"});
    const std::vector<Store::Run> runs = RunsBetween(reader, "", "3");
    return runs.empty() ? "none" : NameOf(Store::Hosts(reader).Of(runs.front()).state) + (", locks: " + Locks());
  }
  static std::string Locks() {
    return Sql(
        "SELECT COUNT(*) FROM pg_locks WHERE locktype = 'advisory' AND classid = CAST('session_locks' AS "
        "regclass)");
  }
  /// Waits until the server has noticed what happened to a connection.
  static std::string SaidOnce(const std::string& locks) {
    for (int look = 0; look < 200 && Locks() != locks; ++look) {
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
      {"restarted",
       [this] {
         server.Crash();
         server.Resume();
       }},
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

}  // namespace
