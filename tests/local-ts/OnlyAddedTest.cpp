// What is recorded is only ever added to, also in a store of the first version.

#include "LocalTsTest.h"

#include <sys/wait.h>
#include <unistd.h>

#include <regex>
#include <sstream>

namespace {

class OnlyAdded : public LocalTsTest {
 protected:
  OnlyAdded() { EXPECT_EQ(Shell("sqlite3 ts.db < '" VERSION_1 "'"), 0); }

  int Shell(const std::string& command) const {
    return std::system(("cd '" + folder.path.string() + "' && " + command).c_str());
  }
  void Run(const std::string& statement) const { OpenFile(folder / "ts.db")->RunScript(statement); }
  /// Every row of the tables that both versions have.
  std::string Content() const {
    EXPECT_EQ(Shell("sqlite3 ts.db .dump | grep '^INSERT' | grep -v -e ts_schema -e seals > content"), 0);
    return ContentOf(folder / "content");
  }
};

TEST_F(OnlyAdded, NoStatementChangesDeletesOrReplacesARow) {
  Begin();
  Run("INSERT INTO seals VALUES (1, NULL, '', '', '', '', '', 2, '', '')");
  const std::string before = Content();
  const std::pair<const char*, const char*> rows[] = {
      // a table, and a new row with something unique of an old one
      {"ts_schema", "(rowid, version, created_at) SELECT rowid, 3, '' FROM ts_schema"},
      {"sessions", "SELECT session_id, 'new', '', '', '', '', '', '' FROM sessions"},
      {"sessions", "SELECT NULL, guid, '', '', '', '', '', '' FROM sessions"},
      {"activities", "SELECT activity_id, 'new', '', '' FROM activities"},
      {"activities", "SELECT NULL, guid, '', '' FROM activities"},
      {"activities", "SELECT NULL, 'new', name, description FROM activities"},
      {"activity_versions", "SELECT version_id, 'new', 1, '', '', '' FROM activity_versions"},
      {"activity_versions", "SELECT NULL, guid, 1, '', '', '' FROM activity_versions"},
      {"activity_versions", "SELECT NULL, 'new', activity_id, name, version, description FROM activity_versions"},
      {"registrations",
       "(rowid, session_id, version_id, file, registered_at) SELECT rowid, 1, 1, '', '' FROM "
       "registrations"},
      {"configurations",
       "SELECT configuration_id, 'new', 1, '', '', '', '', '', '', '', '', '', '' FROM configurations"},
      {"configurations", "SELECT NULL, guid, 1, '', '', '', '', '', '', '', '', '', '' FROM configurations"},
      {"executions", "SELECT execution_id, 'new', NULL, 1, 1, NULL, '', '', 0, '' FROM executions"},
      {"executions", "SELECT NULL, guid, NULL, 1, 1, NULL, '', '', 0, '' FROM executions"},
      {"statuses", "SELECT status_id, 1, 1, 14, '' FROM statuses"},
      {"events", "SELECT event_id, 1, 1, 1, '', '' FROM events"},
      {"parameters", "SELECT event_id, position, '', 'int', NULL, 1 FROM parameters"},
      {"seals", "SELECT seal_id, NULL, '', '', '', '', '', 2, '', '' FROM seals"}};
  for (const auto& [name, row] : rows) {
    const std::string table = name;
    const std::string column = Recorded("SELECT name FROM pragma_table_info('" + table + "') LIMIT 1");
    const std::string set = "SET " + column + " = " + column;
    for (const std::string& statement :
         {"UPDATE " + table + " " + set, "UPDATE OR REPLACE " + table + " " + set, "DELETE FROM " + table,
          "INSERT OR REPLACE INTO " + table + " " + row, "REPLACE INTO " + table + " " + row + " LIMIT 1",
          "INSERT INTO " + table + " " + row + " WHERE true ON CONFLICT DO UPDATE " + set}) {
      try {
        Run(statement);
        ADD_FAILURE() << "not refused: " << statement;
      } catch (const Velora::Store::DatabaseError& error) {
        const std::string text = error.what();
        EXPECT_NE(text.find("rows of " + table + " are only ever added"), std::string::npos) << statement << text;
      }
    }
  }
  EXPECT_EQ(Content(), before);
}

TEST_F(OnlyAdded, NoStatementNumbersARowOutsideWhatSealsCover) {
  Begin();
  Run("INSERT INTO seals VALUES (NULL, NULL, '', '', '', '', '', 2, '', '')");
  // Copies of the first row of every table under another number, with nothing unique of it.
  std::istringstream copies(Recorded(
      "SELECT t.name, replace('INSERT INTO ' || t.name || ' (KEY, ' || group_concat(c.name) || ') SELECT :n, ' || "
      "group_concat(c.name || iif(c.name IN ('guid', 'name'), ' || ''x''', '')) || ' FROM ' || t.name || ' LIMIT 1', "
      "'KEY', iif(t.name = 'parameters', 'position', 'rowid')) FROM sqlite_master t JOIN pragma_table_info(t.name) c "
      "WHERE t.type = 'table' AND c.pk = (t.name = 'parameters' AND c.name = 'event_id') GROUP BY t.name"));
  int tables = 0;
  for (std::string table, copy; std::getline(copies, table, '|') && std::getline(copies, copy); ++tables) {
    for (const char* number : {"-9223372036854775808", "-1", "0", "9007199254740993", "9223372036854775807", "1.5"}) {
      const std::string statement = std::regex_replace(copy, std::regex(":n"), number);
      try {
        Run(statement);
        ADD_FAILURE() << "not refused: " << statement;
      } catch (const Velora::Store::DatabaseError& error) {
        const std::string text = error.what();
        const std::string reason = "rows of " + table + " are numbered from 1 to 9007199254740992";
        EXPECT_TRUE(text.find(reason) != std::string::npos ||
                    (*number == '1' && text.find("datatype mismatch") != std::string::npos))
            << statement << text;
      }
    }
    Run(std::regex_replace(copy, std::regex(":n"), "77"));
  }
  EXPECT_EQ(tables, 11);
}

TEST_F(OnlyAdded, NothingRefersToARowThatIsNotThere) {
  Begin();
  Run("DROP TRIGGER sessions_no_delete");
  Run("DELETE FROM sessions WHERE session_id = (SELECT MAX(session_id) FROM sessions)");
  const std::string before = Content();
  ExpectError([] { SaveEvent(Event("of no session")); }, {"ts.db", "FOREIGN KEY"});
  EXPECT_EQ(Content(), before);
}

TEST_F(OnlyAdded, AStoreOfTheFirstVersionIsBroughtUpOnceAndKeepsItsRows) {
  const std::string before = Content();
  Begin("new.db");
  Configure("ts.db");
  std::vector<pid_t> hosts;
  for (int host = 0; host < 4; ++host) {
    hosts.push_back(fork());
    if (hosts.back() == 0) {
      _exit(TSInstance::IsConnectable() ? 0 : 1);
    }
  }
  for (const pid_t host : hosts) {
    int status = -1;
    EXPECT_TRUE(waitpid(host, &status, 0) == host && status == 0);
  }
  EXPECT_EQ(Content(), before);
  EXPECT_EQ(Recorded("SELECT version FROM ts_schema"), "1\n2\n-3\n");
  const char* const objects = "SELECT type, name, sql FROM sqlite_master ORDER BY name";
  EXPECT_EQ(Recorded(objects), Recorded(objects, "new.db"));
  Begin();
  SaveEvent(Event("after", InstrumentParameterInt("i", 1)));
  EXPECT_EQ(Recorded("SELECT event_id, session_id, position FROM events JOIN parameters USING (event_id) WHERE "
                     "events.name = 'after'"),
            "4|2|1\n");
}

}  // namespace
