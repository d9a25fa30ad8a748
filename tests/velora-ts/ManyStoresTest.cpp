// What verbs say of a store that took in the records of another.

#include "ToolTest.h"
#include "support/Patterns.h"
#include "support/TakenIn.h"
#include "support/TestStore.h"

namespace {

using ManyStores = ToolTest;

/// What another store recorded has higher keys, and is older.
constexpr const char* older =
    "UPDATE executions SET started_at = replace(started_at, '11-25', '11-24') WHERE execution_id > 20000000000;"
    "UPDATE statuses SET at = replace(at, '11-25', '11-24') WHERE status_id > 20000000000;"
    "UPDATE events SET at = replace(at, '11-25', '11-24') WHERE event_id > 20000000000;"
    "INSERT INTO statuses VALUES (20000000099, 20000000001, 20000000001, 4, '2026-11-24T09');";

struct Look {
  const char* command;
  int code;
  const char* says;  // a pattern
};

const Look looks[] = {
    {"show last", 0, "run +0ecba827[^]*"},
    {"check", 1, "[^]*holds the records of other stores, and is for reading[^]*\nlast: run 0ecba827[^]*"},
    {"runs", 0, "run [^]*\n0ecba827[^]*\n2 of 0ec[^]*UNFINISHED[^]*"},
    {"show '2 of 0ec'", 0, "[^]*recorded in the store of veldmar-pc; its host holds no lock here[^]*"},
    {"show grid.mdoc", 1, "several runs match[^]*\nrun 2 of 0ec[^]*\nrun 0ecba827[^]*"},
    {"events --since 2026-12-01 --name ZValue", 0, "no event of those[^]*newest in the store is of 2026-11-25[^]*"},
    {"events --since 2026-12-01 --where 'TiltAngle > 1'", 0, "no event[^]*newest in the store is of 2026-11-25[^]*"},
    {"export --since 2026-11-01 --until 2026-12-01 | grep -E '\"(run|rest)\"|alone' | cut -d, -f1-4", 0,
     R"x(\{"record":"run","format":1,"guid":"2 of 0ec[^\n]*\n\{"record":"run","format":1,"guid":"0ecba827[^\n]*\n)x"
     R"x(\{"record":"rest","format":1\}\n(\{"record":"event","number":4,"execution":null,"session":)"bb4[^\n]*\n)x"
     R"x(\{"record":"rest","format":1\}\n\1"2 of bb4[^\n]*\n)x"},
    {"export --since 2026-11-24T04 --format csv | tail -n 2", 0, "20000000004,2026-11-24[^\n]*\n4,2026-11-25[^\n]*\n"},
};

TEST_F(ManyStores, AreReadInTheOrderOfTime) {
  BringUp();
  const SqlConnection sql = OpenFile(folder / "ts.db");
  sql->RunScript("INSERT INTO events VALUES (NULL, 1, NULL, NULL, 'alone', '2026-11-25T05')");
  TakeInItself(*sql, 2, older);
  for (const auto& [command, code, says] : looks) {
    EXPECT_EQ(Tool(command), code) << command;
    EXPECT_TRUE(Matches(said, says)) << command << '\n' << said;
  }
}

// An older program takes all records for those of one store.
TEST_F(ManyStores, AreSealedByNoProgramThatKnowsOfOneOnly) {
  BringUp();
  const SqlConnection sql = OpenFile(folder / "ts.db");
  TakeInItself(*sql, 2, "");
  const std::string seal = "INSERT INTO seals VALUES (NULL, NULL, '', '', '', '', '', ";
  EXPECT_THROW(sql->RunScript(seal + "2, '', '')"), Velora::Store::Error);
  EXPECT_NO_THROW(sql->RunScript(seal + "3, '', '')"));
}

}  // namespace
