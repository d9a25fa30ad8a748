// What the tool says of a run that was killed in the night.

#include "ToolTest.h"
#include "support/Patterns.h"
#include "support/TestStore.h"

#include <algorithm>

namespace {

/// A folder with a store of two nights. The second run was killed at its event 200.
class Night : public WithTool<InFolder> {
 protected:
  Night() {
    const TestStore store(folder / "ts.db");
    store.Make();
    folder.Write("TSAL.config", "<TSAL Instrument='Veldmar 3'><Database " + store.Attributes("ts.db") + "/></TSAL>");
    EXPECT_EQ(Shell("'" NIGHT_RUN "' . --finish --events 40 --start 2026-11-24"), 0) << said;
    EXPECT_EQ(Shell("export TZ=IST-5:30; '" NIGHT_RUN "' . --events 200 --start 2026-11-25T21:00; test $? = 137"), 0);
  }
  /// What the tool writes in a zone of its own.
  std::string Told(const std::string& arguments) {
    EXPECT_EQ(Shell("TZ=IST-5:30 timeout 60 velora-ts " + arguments), 0) << arguments << ": " << said;
    return said;
  }
};

const std::string lastEvents =
    "  08:30:00.000  Error  Message=stage did not reach its position within 30 s  Code=4117  Position=20.750 -7.250\n"
    "  08:28:12.000  Image  Defocus=-1.68051  Dose=40  FocusScore=0.762031  File=hole-11-7.tiff  "
    "DateTime=2026-11-26T08:26:24\n"
    "  08:26:24.000  Image  Defocus=-1.588  Dose=40  FocusScore=0.762031  File=hole-11-6.tiff  "
    "DateTime=2026-11-26T08:24:36\n"
    "  08:24:36.000  Image  Defocus=-1.50113  Dose=40  FocusScore=0.762031  File=hole-11-5.tiff  "
    "DateTime=2026-11-26T08:22:48\n"
    "  08:22:48.000  Image  Defocus=-1.91373  Dose=40  FocusScore=0.762031  File=hole-11-4.tiff  "
    "DateTime=2026-11-26T08:21:00\n";
const std::string lastLines =
    "the log around that time\n"
    "  08:30:00.000  warning  Acquisition: stage drifts by 3.2 nm/s; expected less than 0.5\n"
    "  08:30:00.000  error  Acquisition: stage did not reach 20.750 -7.250 within 30 s (4117)\n"
    "  08:34:00.500  error  all is off\n    pump A\n";

TEST_F(Night, ShowBeginsWithTheCause) {
  const SqlConnection sql = TestStore(folder / "ts.db").Open();
  const auto begin = [&](const std::string& node, const std::string& parent, int status, const std::string& at) {
    sql->RunScript(
        "INSERT INTO executions (execution_id, guid, parent_id, root_id, session_id, node, description, "
        "kind, started_at) SELECT (SELECT MAX(execution_id) FROM executions) + 1, '" +
        node + "', execution_id, root_id, session_id, '" + node + "', '', 5, '" + at +
        "' FROM executions WHERE root_id = (SELECT MAX(root_id) FROM executions) AND node = '" + parent +
        "'; INSERT INTO statuses SELECT MAX(s.status_id) + 1, "
        "MAX(x.execution_id), MAX(x.session_id), " +
        std::to_string(status) + ", '" + at + "' FROM statuses s CROSS JOIN executions x");
  };
  folder.Write("other.log",
               "2026-11-26T03:04:00.5Z [error] all is off\n  pump A\n2026-11-26T03:04:01Z [info] bye\n"
               "2026-11-26T03:10:30Z [error] next day\n");
  const std::string hole = "in hole 11, below specimen 12 > grid 1 > square 1, since 08:12:00.000\n";
  EXPECT_EQ(Told("show last | sed '1s/^[A-Z]*; //; 1s/,.*//; /^run /,$d'"),
            "last recorded 2026-11-26 08:30:00.000+05:30\n" + hole + lastEvents + '\n');
  EXPECT_EQ(Told("show --log night.log other.log last | sed '1s/^[A-Z]*; //; 1s/,.*//; /^run /,$d'"),
            "last recorded 2026-11-26 08:30:00.000+05:30\n" + hole + lastEvents +
                ReplaceMatches(lastLines, "\n    pump", "\u240A  pump") + '\n');

  // Two branches; what is running below something that is done is innermost too.
  begin("grid 2", "specimen 12", 14, "2026-11-26T03:00:01.000000Z");
  begin("square 1b", "grid 2", 4, "2026-11-25T03:00:02.000000Z");
  EXPECT_EQ(Told("show last | sed '1s/^[A-Z]*; //; 1s/,.*//; /^run /,$d'"),
            "last recorded 2026-11-26 08:30:01.000+05:30\n" + hole + lastEvents +
                "in square 1b, below specimen 12 > grid 2, since 2026-11-25 08:30:02.000+05:30\n\n");
  for (int step = 0; step < 9; ++step) {
    begin("step " + std::to_string(step), "grid 2", 4, "2026-11-26T03:00:02.000000Z");
  }
  EXPECT_EQ(Told("show last | sed '1s/^[A-Z]*; //; 1s/,.*//; /^run /,$d' | grep -E '^(in|and)' | sed '2,9d'"),
            "in step 8, below specimen 12 > grid 2, since 08:30:02.000\n" + hole + "and in 1 more\n");
  EXPECT_TRUE(HasMatch(Told("show --json --log other.log last"),
                       R"("where":\{"in":\[\{"path":\[\{"guid":"[^"]*","node":"specimen 12",)"
                       R"("activity":"Session","version":"1.0"\},\n[^]*"more":1,"log":\[\{"at":)"
                       R"("2026-11-26T03:04:00.500000Z","level":"error","source":"",)"
                       R"("text":"all is off\\u000a  pump A"\}\]\},)"))
      << said;
  EXPECT_EQ(Told("show $(velora-ts runs | grep done | cut -c 1-8) | head -c 4"), "run ");
}

TEST_F(Night, ALargePageHasTheLastEventsWhereItStopped) {
  NEEDS_PAGE();
  TestStore(folder / "ts.db")
      .Open()
      ->RunScript(
          "INSERT INTO events (event_id, session_id, execution_id, name, at) WITH RECURSIVE n(n) AS (SELECT 1 UNION "
          "ALL "
          "SELECT n + 1 FROM n WHERE n < 200000) SELECT e.event_id + n, e.session_id, e.execution_id, 'Image', e.at "
          "FROM n "
          "CROSS JOIN events e WHERE e.name = 'Error'");
  EXPECT_EQ(Shell("velora-ts report last -o page"), 0);
  // All that there were before, the first added one and the last five.
  EXPECT_TRUE(Says("binned: 206 of 200200 events ")) << said;
}

TEST_F(Night, LinesOfTheLogStandAmongTheEvents) {
  folder.Write("other.log", "2026-11-26T03:04:00.5Z [error] all is off\n2026-11-26T02:59:00Z [info] here\n");
  const std::string arguments = "show last --events --log other.log night.log";
  EXPECT_EQ(
      Told(arguments + " --log-info | tail -n 6 | sed -E 's/ +/ /g; s/ (Msg|M|D)[^ ]*=.*//'"),
      "2026-11-26 08:28:12.000+05:30 log of Acquisition info Save instrument event. node: \"Image\"\n"
      "2026-11-26 08:30:00.000+05:30 grid 1 > square 1 > hole 11 Error\n"
      "2026-11-26 08:30:00.000+05:30 log of Acquisition warning stage drifts by 3.2 nm/s; expected less than 0.5\n"
      "2026-11-26 08:30:00.000+05:30 log of Acquisition error stage did not reach 20.750 -7.250 within 30 s (4117)\n"
      "2026-11-26 08:34:00.500+05:30 log error all is off\n2026-11-26 08:29:00.000+05:30 log info here\n");
  EXPECT_EQ(Told(arguments + " | sed -n '/ info /p'"), "");
  EXPECT_TRUE(HasMatch(Told(arguments + " --json"), R"(\],"log":\[\n(\{"at":"[^\n]*\n){4}$)"));
  NEEDS_PAGE();
  EXPECT_EQ(Shell("velora-ts report last -o page --log night.log other.log && grep -o '\"log\":{.*\\]' page"), 0);
  EXPECT_TRUE(Says(R"("level":["warning",0,"error",0],"source":["Acquisition",0,0,""],"text":["nitrogen)")) << said;
}

}  // namespace
