// Stores that become one: what the store of many says of each, and what it refuses.

#include "ToolTest.h"
#include "postgresql/Server.h"
#include "support/HostileRun.h"

#include <utility>

namespace {

using namespace std::string_literals;
using Quor::TolvaServices::Types::TSInstance;

class Copies : public WithTool<PostgreSql> {
 protected:
  void MakeFile(const std::string& name, const std::string& instrument = "Scope 8") const {
    create_directory(folder / name);
    WriteHostFiles(folder, name + '/');
    folder.Write(name + "/TSAL.config",
                 "<TSAL Instrument='" + instrument + "'><Database Backend='sqlite3' Connection='ts.db'/></TSAL>");
  }
  void MakeDatabase(const std::string& name) const {
    Sql("CREATE DATABASE \"" + name + '"');
    create_directory(folder / name);
    folder.Write(name + "/TSAL.config",
                 "<TSAL><Database Backend='postgresql' Connection='dbname=" + name + "'/></TSAL>");
  }
  void Record(const std::string& name, const std::string& node) const {
    TSInstance::SetTsalPath((folder / name).string());
    TSInstance::BeginSession();
    RecordHostileRun(node);
  }

  const Server server{folder / "of the server", underWine ? FreePort() : ""};
};

TEST_F(Copies, BecomeOneStoreInAnyOrder) {
  for (const auto& [name, instrument] : {std::pair("a", "Scope 7"), {"b", "Scope 7"}, {"c", "Scope 8"}}) {
    MakeFile(name, instrument);
    Record(name, "run of "s + name);
    EXPECT_EQ(Tool("seal --anchor "s + name + ".anchor --config " + name), 0) << said;
    EXPECT_EQ(Shell("velora-ts export last --config "s + name + " > " + name + ".jsonl"), 0) << said;
  }
  std::string order = "abc";
  do {
    MakeFile("file-" + order);
    MakeDatabase("server-" + order);
    for (const std::string& target : {"file-" + order, "server-" + order}) {
      SCOPED_TRACE(target);
      for (const char each : order) {
        EXPECT_EQ(Tool("copy "s + each + ' ' + target), 0) << said;
      }
      EXPECT_EQ(Shell("velora-ts runs --config " + target + " | grep -c 'Scope [78] .*run of'"), 0);
      EXPECT_EQ(said, "3\n");
      EXPECT_EQ(Shell("for each in a b c; do velora-ts export $(head -1 $each.jsonl | grep -oE '[0-9a-f-]{36}') "
                      "--config " +
                      target + " | cmp - $each.jsonl || exit 1; done"),
                0)
          << said;
      EXPECT_EQ(Tool("seal --config " + target), 0) << said;
      EXPECT_EQ(Tool("verify --anchor a.anchor --anchor b.anchor --anchor c.anchor --config " + target), 0) << said;
    }
  } while (std::next_permutation(order.begin(), order.end()));
}

TEST_F(Copies, AreRefusedWhereTheyWouldMixRecords) {
  for (const char* const name : {"a", "b"}) {
    MakeFile(name);
    Record(name, name);
  }
  MakeFile("file");
  MakeDatabase("server");
  EXPECT_EQ(Tool("copy b file && velora-ts copy b server && cp -r a older"), 0) << said;
  Record("a", "again");
  EXPECT_EQ(Tool("copy a server && cp -r a clone"), 0) << said;
  EXPECT_EQ(Tool("copy older server"), 3);
  EXPECT_TRUE(Says("' has no row 2 of sessions, which 'server on ")) << said;
  Record("older", "also again");
  EXPECT_EQ(Shell("sqlite3 clone/ts.db 'DROP TRIGGER stores_no_update' \"UPDATE stores SET guid = 'other'\""), 0);
  Velora::Store::PostgreSqlConnection other("dbname=server");
  const std::string lock = "CAST(CAST(CAST('stores' AS regclass) AS oid) AS bigint) << 32 | 3";
  const struct {
    const char* copy;
    const char* words;
    std::string meanwhile = "";
  } rows[] = {
      {"older server", "' has another row 2 of sessions than 'server on "},
      {"clone server", " under other numbers"},
      {"clone clone", " are one store"},
      {"a b", "has records of its own hosts"},
      {"file server", "' is not empty; expected an empty store"},
      {"server file", "' is not empty; expected an empty store"},
      {"a server", "another program adds the records of ", "SELECT pg_advisory_lock(" + lock + ")"},
  };
  for (const auto& [copy, words, meanwhile] : rows) {
    other.RunScript(meanwhile + ";");
    EXPECT_EQ(Tool("copy "s + copy), 3) << copy;
    EXPECT_TRUE(Says(words)) << copy << ": " << said;
  }
  other.RunScript("SELECT pg_advisory_unlock_all()");
  EXPECT_EQ(Tool("copy a server"), 0) << said;
  EXPECT_TRUE(Says(" as store 3 there, and compared: 2 executions, 4 events")) << said;
}

}  // namespace
