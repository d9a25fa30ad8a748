// What each verb of velora-ts does on a standby: those that read answer as on the primary.

#include "durability/Recording.h"
#include "postgresql/Server.h"
#include "support/Process.h"
#include "support/Shell.h"

namespace {

class Standby : public WithShell<PostgreSql> {
 protected:
  Standby() {
    PrepareFolder(folder / "primary", "Backend='postgresql' Connection='dbname=postgres'");
    PrepareFolder(folder / "reader",
                  "Backend='postgresql' Connection='dbname=postgres host=" + (folder / "second").string() + "," +
                      first.folder.string() + " target_session_attrs=prefer-standby'");
    PrepareFolder(folder / "file");
  }
  void CatchUp() const {
    const std::string end = Sql("SELECT pg_current_wal_insert_lsn()");
    for (int look = 0; look < 3000; ++look) {
      if (Sql("SELECT pg_last_wal_replay_lsn() >= '" + end + "'", "dbname=postgres host=" + second.folder.string()) ==
          "t") {
        return;
      }
      usleep(20'000);
    }
    ADD_FAILURE() << "the standby does not catch up";
  }
  int Run(const std::string& verb, const std::string& where) {
    return Shell("cd " + where + " && '" VELORA_TS "' " + verb);
  }

  const Server first{folder / "first"};
  const Server second{folder / "second", "standby", first};
};

TEST_F(Standby, ReadsEverythingAndSaysWhyItWritesNothing) {
  const Process host([this] {
    for (const auto& [name, records] : {std::pair("finished", 5), {"running", 31}}) {
      Recording recording(
          folder / "primary", name, [](const auto&) {}, [](const auto&) {});
      for (int record = 0; record < records; ++record) {
        recording.Next();
      }
    }
  });
  const std::string finished = Sql("SELECT guid FROM executions ORDER BY execution_id LIMIT 1");
  CatchUp();
  const std::string alike;
  const std::string writes = "its server is a standby, which only reads; expected the primary";
  const std::string lock = "the server is a standby, on which hosts hold no locks";
  const std::tuple<std::string, std::string> rows[] = {
      {"show last", lock},
      {"show " + finished, alike},
      {"runs", "UNFINISHED"},
      {"tail " + finished, alike},
      {"events", alike},
      {"events --where 'angle > 3'", alike},
      {"stats angle", alike},
      {"parameters", alike},
      {"diff last last", "UNFINISHED"},
      {"export last", alike},
      {"export --since 2020-01-01 --format csv", alike},
      {"report " + finished + " --output /dev/null", alike},
      {"verify", "on which no new store can be made"},
      {"check", writes},
      {"prepare", writes},
      {"note last words", writes},
      {"seal", writes},
      {"copy . ../file", writes},
      {"backup file", "run pg_dump"},
  };
  for (const auto& [verb, words] : rows) {
    SCOPED_TRACE(verb);
    const int onStandby = Run(verb, "reader");
    const std::string answer = said;
    EXPECT_NE(answer.find(words), std::string::npos) << answer;
    if (words.empty()) {
      EXPECT_EQ(Run(verb, "primary"), onStandby);
      EXPECT_EQ(onStandby, 0) << answer;
      EXPECT_EQ(said, answer);
      EXPECT_FALSE(said.empty());
    }
  }
}

}  // namespace
