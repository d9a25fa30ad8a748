// Runs the example host as a person would, and looks at what stands in the database afterwards.

#include "support/Query.h"
#include "support/ScratchFolder.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

namespace {

struct Outcome {
  int exitCode;
  std::string output;
};

class RecordTiltSeries : public testing::Test {
 protected:
  /// Records files into the scratch folder's "record".
  Outcome Record(const std::string& arguments, const std::string& environment = "") const {
    const std::string output = (folder / "output.txt").string();
    const int status = std::system(("cd '" + folder.path.string() + "' && " + environment +
                                    " '" RECORD_TILT_SERIES "' --data record " + arguments + " > '" + output + "' 2>&1")
                                       .c_str());
    return {WEXITSTATUS(status), ContentOf(output)};
  }

  std::string Recorded(const std::string& statement) const { return Query(folder / "record/ts.db", statement); }

  ScratchFolder folder;
};

TEST_F(RecordTiltSeries, OneSectionTravelsFromTheFileToTheDatabase) {
  folder.Write("one.mdoc", "Voltage = 300\n[T = by hand]\n[ZValue = 3]\nTiltAngle = -60.01\nStage = 1.5 -2\n");
  const Outcome outcome = Record("one.mdoc");
  EXPECT_EQ(outcome.exitCode, 0) << outcome.output;
  EXPECT_EQ(Recorded("SELECT activity_version, node, status, parent_id FROM execution_states ORDER BY execution_id"),
            "TiltSeries|one.mdoc|14|NULL\nSection|ZValue 3|14|1\n");
  EXPECT_EQ(Recorded("SELECT node, event, parameter, kind, value_text, value_number FROM readings "
                     "ORDER BY event_id, position"),
            "one.mdoc|Series|Voltage|int|NULL|300\n"
            "one.mdoc|Series|T|text|by hand|NULL\n"
            "ZValue 3|ZValue|TiltAngle|double|NULL|-60.01\n"
            "ZValue 3|ZValue|Stage|text|1.5 -2|NULL\n"
            "ZValue 3|ZValue|FramesOnDisk|bool|NULL|0\n");
}

}  // namespace
