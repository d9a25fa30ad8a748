// What is recorded is only ever added to, also in a store of the first version.

#include "LocalTsTest.h"
#include "store/schema/Tables.h"

#include <sys/wait.h>
#include <unistd.h>

#include <map>
#include <vector>

namespace {

using Velora::Store::Column;
using Velora::Store::Table;
using Velora::Store::Type;

class OnlyAdded : public LocalTsTest {
 protected:
  OnlyAdded() { EXPECT_EQ(Shell("sqlite3 ts.db < '" VERSION_1 "'"), 0); }

  int Shell(const std::string& command) const {
    return std::system(("cd '" + folder.path.string() + "' && " + command).c_str());
  }
  void Run(const std::string& statement) const { OpenFile(folder / "ts.db")->RunScript(statement); }
  void ExpectRefused(const std::string& statement, const std::string& reason) const {
    try {
      Run(statement);
      ADD_FAILURE() << "not refused: " << statement;
    } catch (const Velora::Store::DatabaseError& error) {
      EXPECT_NE(std::string(error.what()).find(reason), std::string::npos) << statement << error.what();
    }
  }
  /// Every row of the tables that both versions have.
  std::string Content() const {
    EXPECT_EQ(Shell("sqlite3 ts.db .dump | grep '^INSERT' | grep -v -e ts_schema -e seals | sort > content"), 0);
    return ContentOf(folder / "content");
  }
};

using Values = std::map<std::string, std::string>;

/// A table and a new row of it after each old one: with these values, and with others in texts.
std::string Another(const Table& table, const Values& given) {
  std::vector<std::string> values;
  for (const Column& column : table.columns) {
    const auto value = given.find(column.name);
    values.push_back(value != given.end()        ? value->second
                     : column.type == Type::Key  ? "NULL"
                     : column.type == Type::Text ? column.name + " || 'x'"
                                                 : column.name);
  }
  return table.name + " (" + table.ColumnList() + ") SELECT " + Velora::Store::Listed(values) + " FROM " + table.name;
}

/// The columns whose values no two rows have in common.
std::vector<std::vector<std::string>> UniqueOf(const Table& table) {
  std::vector<std::vector<std::string>> all = {table.primaryKey.empty() ? std::vector{table.Key()} : table.primaryKey};
  for (const Column& column : table.columns) {
    if (column.isUnique) {
      all.push_back({column.name});
    }
  }
  if (!table.uniqueTogether.empty()) {
    all.push_back(table.uniqueTogether);
  }
  all.insert(all.end(), table.uniquePerStore.begin(), table.uniquePerStore.end());
  return all;
}

TEST_F(OnlyAdded, NoStatementChangesDeletesOrReplacesARow) {
  Begin();
  Run("INSERT INTO seals VALUES (1, NULL, '', '', '', '', '', 2, '', '')");
  Run("INSERT INTO notes VALUES (1, 1, '', '', '', '')");
  Run("INSERT INTO tree_leaves VALUES (1, 1, ''); INSERT INTO tree_parts VALUES (1, '')");
  Run("INSERT INTO signatures VALUES (1, 1, 'note', ''); INSERT INTO timestamps VALUES (1, 1, '')");
  const std::string before = Content();
  for (const Table& table : Velora::Store::Tables()) {
    const std::string set = "SET " + table.Number() + " = " + table.Number();
    for (const std::vector<std::string>& unique : UniqueOf(table)) {
      Values same;
      for (const std::string& column : unique) {
        same[column] = column;
      }
      const std::string row = Another(table, same);
      for (const std::string& statement :
           {"UPDATE " + table.name + " " + set, "UPDATE OR REPLACE " + table.name + " " + set,
            "DELETE FROM " + table.name, "INSERT OR REPLACE INTO " + row, "REPLACE INTO " + row + " LIMIT 1",
            "INSERT INTO " + row + " WHERE true ON CONFLICT DO UPDATE " + set}) {
        ExpectRefused(statement, "rows of " + table.name + " are only ever added");
      }
    }
  }
  EXPECT_EQ(Content(), before);
}

TEST_F(OnlyAdded, NoStatementNumbersARowOutsideWhatSealsCover) {
  Begin();
  Run("INSERT INTO seals VALUES (NULL, NULL, '', '', '', '', '', 2, '', '')");
  Run("INSERT INTO notes VALUES (1, 1, '', '', '', '')");
  Run("INSERT INTO tree_leaves VALUES (1, 1, ''); INSERT INTO tree_parts VALUES (1, '')");
  Run("INSERT INTO signatures VALUES (1, 1, 'note', ''); INSERT INTO timestamps VALUES (1, 1, '')");
  for (const Table& table : Velora::Store::Tables()) {
    for (const char* number : {"-9223372036854775808", "-1", "0", "10000000000", "9223372036854775807", "1.5"}) {
      const bool isTyped = table.primaryKey.empty() && number == "1.5"s;
      ExpectRefused("INSERT INTO " + Another(table, {{table.Number(), number}}) + " LIMIT 1",
                    isTyped ? "datatype mismatch" : "rows of " + table.name + " are numbered from 1 to 9999999999");
    }
    Run("INSERT INTO " + Another(table, {{table.Number(), "77"}}) + " LIMIT 1");
  }
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
  EXPECT_EQ(
      Content(),
      before + Recorded("SELECT printf('INSERT INTO stores VALUES(1,%Q,%Q,NULL,NULL);', guid, made_at) FROM stores"));
  EXPECT_EQ(Recorded("SELECT version FROM ts_schema"), "1\n2\n-3\n");
  EXPECT_NE(Recorded("SELECT guid FROM stores"), Recorded("SELECT guid FROM stores", "new.db"));
  const char* const objects = "SELECT type, name, sql FROM sqlite_master ORDER BY name";
  EXPECT_EQ(Recorded(objects), Recorded(objects, "new.db"));
  Begin();
  SaveEvent(Event("after", InstrumentParameterInt("i", 1)));
  EXPECT_EQ(Recorded("SELECT event_id, session_id, position FROM events JOIN parameters USING (event_id) WHERE "
                     "events.name = 'after'"),
            "4|2|1\n");
}

}  // namespace
