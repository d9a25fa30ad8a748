// A host in C over the real libraries: what its run leaves in a store, and whether it knows beforehand.

#include "Run.h"
#include "support/Query.h"
#include "support/ScratchFolder.h"
#include "support/System.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

namespace {

constexpr std::size_t zero = VELORA_TS_ZERO_TERMINATED;

class RecordingInC : public testing::Test {
 protected:
  RecordingInC() {
    std::filesystem::current_path(folder.path);
    PutFiles();
  }
  ~RecordingInC() override { std::filesystem::current_path("/"); }

  void PutFiles() const {
    folder.Write("TSAL.config",
                 R"(<TSAL Instrument="Scope 7"><Database Backend="sqlite3" Connection="ts.db"/></TSAL>)");
    folder.Write("activities.xml", R"(<Activities><Activity Name="A"><ActivityVersion Name="Series" Version="1.0"/>
      <ActivityVersion Name="AutoFunction" Version="1.0"/></Activity></Activities>)");
    folder.Write("instrument.xml", "<Instrument/>");
  }
  /// The findings of velora_ts_available, a line each; empty if it says yes.
  static std::string Findings() {
    const velora_ts_status status = velora_ts_available("instrument.xml", zero, nullptr, 0);
    if (status == VELORA_TS_OK) {
      return "";
    }
    EXPECT_EQ(status, VELORA_TS_NOT_AVAILABLE);
    const std::string start = "velora_ts_available: ", error = velora_ts_last_error(nullptr);
    EXPECT_EQ(error.substr(0, start.size()), start);
    return error.substr(start.size()) + '\n';
  }

#ifdef VELORA_TS_PROGRAM
  /// The findings of the tool about a host that loads the same library.
  std::string FindingsOfCheck() const {
    const std::string tool =
        VELORA_TS_PROGRAM " check --library '" VELORA_LIBRARY "' | sed -n 's/^finding: //p' >found";
    EXPECT_EQ(std::system(tool.c_str()), 0);
    return ContentOf(folder / "found");
  }
#endif

  const ScratchFolder folder;
};

TEST_F(RecordingInC, LeavesInTheStoreWhatTheHostSaid) {
  EXPECT_EQ(Findings(), "");
  EXPECT_FALSE(exists(folder / "ts.db")) << "asking makes no store";
  const char* const failed = record_run();
  ASSERT_EQ(failed, nullptr) << failed << ": " << velora_ts_last_error(nullptr);
  EXPECT_EQ(Findings(), "") << "in the middle of a session";
  const auto store = folder / "ts.db";
  EXPECT_EQ(Query(store,
                  "SELECT e.node, e.description, activity_version, p.node, status FROM execution_states e "
                  "LEFT JOIN executions p ON p.execution_id = e.parent_id ORDER BY e.execution_id"),
            "all|Set Parent ActivityExec|AutoFunction|NULL|14\n"
            "grid 3|\\x610062|Series|all|4\n"
            "+3.0\u00B0||Series|grid 3|14\n");
  EXPECT_EQ(
      Query(store,
            "SELECT node, event, group_concat(parameter || ' ' || kind || ' ' || coalesce(value_text, value_number)) "
            "FROM readings GROUP BY event_id ORDER BY event_id"),
      "+3.0\u00B0|Image|Converged bool 1.0,Defocus double -0.1,Frames int -40.0,File text \\x780079\n"
      "NULL|Image|Converged bool 1.0,Defocus double -0.1,Frames int -40.0,File text \\x780079\n");
}

#ifdef VELORA_TS_PROGRAM
TEST_F(RecordingInC, NeedsWhatCheckSaysThatAHostNeeds) {
  struct Row {
    const char* name;
    std::function<void()> spoil;
  };
  for (const Row& row : std::vector<Row>{
           {"nothing missing", [] {}},
           {"no service", [] { System::SetVariable("TSAL_SERVICE", "absent"); }},
           {"no TSAL.config", [] { std::filesystem::remove("TSAL.config"); }},
           {"two faults in one",
            [this] {
              folder.Write("activities.xml", "<Activities><Activity/></Activities>");
              std::filesystem::remove("instrument.xml");
            }},
           {"wrong settings", [this] { folder.Write("TSAL.config", "<TSAL>"); }},
           {"no folder of the store",
            [this] {
              folder.Write("TSAL.config", R"(<TSAL><Database Backend="sqlite3" Connection="none/ts.db"/></TSAL>)");
            }},
           {"no store in the file", [this] { folder.Write("ts.db", "this is something else"); }},
       }) {
    PutFiles();
    System::SetVariable("TSAL_SERVICE", "");
    row.spoil();
    EXPECT_EQ(Findings(), FindingsOfCheck()) << row.name;
  }
}
#endif

TEST_F(RecordingInC, RecordsNothingWithoutTs) {
  System::SetVariable("TSAL_SERVICE", "absent");
  EXPECT_NE(Findings(), "");
  EXPECT_EQ(record_run(), nullptr);
  EXPECT_FALSE(exists(folder / "ts.db"));
}

}  // namespace
