// velora-ts forward between a file, hosts that record into it, and a server.

#include "ToolTest.h"
#include "postgresql/Server.h"
#include "support/HostileRun.h"
#include "support/TestStore.h"

#include <chrono>
#include <thread>

namespace {

using namespace std::string_literals;
using Quor::TolvaServices::Types::TSInstance;

class Forwarding : public WithTool<PostgreSql> {
 protected:
  Forwarding() {
    Configure("instrument", "<Database Backend='sqlite3' Connection='ts.db'/><Forward Connection='dbname=postgres'/>");
    Configure("facility", "<Database Backend='postgresql' Connection='dbname=postgres'/>");
    WriteHostFiles(folder, "instrument/");
    WriteHostFiles(folder, "facility/");
    Sql("CREATE ROLE host LOGIN PASSWORD 'secret'");
    EXPECT_EQ(Tool("prepare --hosts host --config facility"), 0) << said;
  }
  ~Forwarding() override { static_cast<void>(Shell("[ ! -e process ] || kill -9 $(cat process) 2>/dev/null")); }

  void Configure(const std::string& name, const std::string& content) const {
    create_directory(folder / name);
    folder.Write(name + "/TSAL.config", "<TSAL Instrument='Scope 7'>\n" + content + "</TSAL>");
  }
  void Record(const std::string& name) const {
    TSInstance::SetTsalPath((folder / "instrument").string());
    TSInstance::BeginSession();
    RecordHostileRun(name);
  }
  /// Starts a forwarder as the role of the hosts, whose words are in the file `words`.
  void Follow() {
    EXPECT_EQ(Shell("sh -c 'PGUSER=host velora-ts forward --follow --config instrument >words 2>&1 & echo $! >process; "
                    "wait $!; echo ended with $? >>words' &\n"),
              0);
  }
  std::string Words() const { return ContentOf(folder / "words"); }
  bool Tells(const std::string& words) const {
    return Comes([&] { return Words().find(words) != std::string::npos; });
  }
  bool Arrives() const {
    const auto file = OpenFile(folder / "instrument/ts.db");
    return Comes([&] {
      return std::to_string(file->Find<int>("SELECT COUNT(*) FROM events").value()) ==
             Sql("SELECT COUNT(*) FROM events");
    });
  }
  int Check() { return Tool("check --config instrument"); }

  const Server server{folder / "of the server", underWine ? FreePort() : ""};

 private:
  /// Waits until something is so.
  template <typename Question>
  static bool Comes(const Question& isSo) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!isSo() && std::chrono::steady_clock::now() < end) {
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return isSo();
  }
};

TEST_F(Forwarding, FollowsHostsThroughAnAbsenceOfTheServer) {
  SKIP_UNDER_WINE("a signal ends a program of Windows at once; ConsoleTest has Ctrl-C");
  Follow();
  EXPECT_TRUE(Tells("waiting for it")) << Words();
  Record("one");
  EXPECT_TRUE(Arrives()) << Words();
  EXPECT_EQ(Check(), 0) << said;
  EXPECT_TRUE(Says("has all that is recorded here") && Says("a forwarder is at work")) << said;
  EXPECT_EQ(Tool("forward --config instrument"), 3) << said;
  EXPECT_TRUE(Says("another program adds records of this store")) << said;
  EXPECT_EQ(Shell("sqlite3 instrument/ts.db '.backup instrument/older.db'"), 0) << said;

  server.Crash();
  Record("two");
  EXPECT_TRUE(Tells("trying again until it works")) << Words();
  EXPECT_EQ(Check(), 0) << "hosts record all the same: " << said;
  for (const char* const words :
       {"cannot be reached: ", " wait for 'postgres", ", of these 2 events; the oldest is of ",
        "; it was last reached at ", "forwarding: a forwarder is at work", "warning: forwarding fails since "}) {
    EXPECT_TRUE(Says(words)) << words << '\n' << said;
  }
  server.Resume();
  EXPECT_TRUE(Tells("forwarding works again, after ")) << Words();
  EXPECT_TRUE(Arrives()) << Words();
  EXPECT_EQ(Shell("kill -TERM $(cat process)"), 0) << said;
  EXPECT_TRUE(Tells("ended with 0")) << Words();
  EXPECT_NE(Words().find(" rows, of these 4 events"), std::string::npos) << Words();
  EXPECT_EQ(Words().find("trying again"), Words().rfind("trying again")) << "said once: " << Words();
  EXPECT_EQ(Check(), 0) << said;
  EXPECT_TRUE(Says("no forwarder is at work")) << said;

  EXPECT_EQ(Tool("forward --follow --config instrument --with instrument/older.db"), 1) << said;
  EXPECT_TRUE(Says("it is an older copy of itself") && Says("velora-ts rotate")) << said;
  folder.Write("instrument/ts.db-forward", "{\"marks\":");
  EXPECT_EQ(Check(), 0) << said;
  EXPECT_TRUE(Says("ts.db-forward' is broken; expected ")) << said;
}

TEST_F(Forwarding, IsMissedAtTheFacilityWhenItIsSilent) {
  Record("one");
  EXPECT_EQ(Tool("forward --config instrument"), 0) << said;
  EXPECT_EQ(Tool("runs --json --config facility"), 0);
  const std::string runs = said;
  for (const auto& [seconds, isSilent] : {std::pair(300, false), {610, true}}) {
    Sql("UPDATE arrivals SET waiting = 3, waiting_since = '2026-11-26T09:12:38.120000Z', at = to_char(now() AT TIME "
        "ZONE 'UTC' - make_interval(secs => " +
        std::to_string(seconds) + "), 'YYYY-MM-DD\"T\"HH24:MI:SS.US\"Z\"')");
    EXPECT_EQ(Tool("runs --json --config facility"), 0);
    const std::size_t line = said.find("instrument 'Scope 7' is silent: its forwarder was last heard at ");
    EXPECT_EQ(line != std::string::npos && said.find("; 3 rows waited there then, since ", line) != std::string::npos,
              isSilent)
        << said;
    EXPECT_EQ(Tool("runs --json --config facility 2>/dev/null"), 0);
    EXPECT_EQ(said, runs);
    EXPECT_EQ(Tool("check --config facility"), 0) << said;
    EXPECT_TRUE(Says(isSilent ? "warning: instrument 'Scope 7', last" : "forwarded: instrument 'Scope 7', last"))
        << said;
  }
}

TEST_F(Forwarding, NeedsAFacility) {
  struct Case {
    std::string forward;
    int code;
    std::string words;
  };
  for (const auto& [forward, code, words] :
       {Case{"", 2, "TSAL.config names no facility; expected <Forward Connection="},
        Case{"<Forward Connection='password=guess me'/>", 3, "TSAL.config', line 3: PostgreSQL does not understand"},
        Case{"<Forward Connection='host=127.0.0.1 port=1 password=guess'/>", 3, "cannot be reached"}}) {
    Configure("instrument", "<Database Backend='sqlite3' Connection='ts.db'/>\n" + forward);
    Record("one");
    EXPECT_EQ(Tool("forward --config instrument"), code) << said;
    EXPECT_TRUE(Says(words)) << said;
    EXPECT_FALSE(Says("guess")) << said;
    EXPECT_EQ(Check(), 0) << said;
    EXPECT_FALSE(Says("guess")) << said;
    EXPECT_EQ(Says("warning: " + (code == 3 ? "" : words)), code == 3) << said;
  }
  EXPECT_EQ(Tool("forward --config instrument --with facility"), 2) << said;
  EXPECT_TRUE(Says("' is a store on a server; expected one in a file")) << said;
}

}  // namespace
