// Where the settings are looked for: both files in the current directory, else both in the data root.

#include "support/ComponentTest.h"

namespace {

using SettingsSearch = ComponentTest;

TEST_F(SettingsSearch, EveryDistributionOfTheTwoFilesHasItsOutcome) {
  const std::filesystem::path files[] = {current / "TSAL.config", current / "activities.xml", dataRoot / "TSAL.config",
                                         dataRoot / "activities.xml"};
  for (unsigned int there = 0; there < 32; ++there) {
    for (unsigned int i = 0; i < 4; ++i) {
      remove(files[i]);
      if ((there >> i & 1) != 0) {  // whatever has the name counts, a folder too
        there < 16 ? void(std::ofstream(files[i])) : void(create_directory(files[i]));
      } else if (there >= 16 && System::pathsAreBytes) {  // and a link to nothing does not
        create_symlink("nothing", files[i]);
      }
    }
    const bool here = (there & 3) == 3;
    const bool anywhere = here || (there & 12) == 12;
    const std::string place = here ? "" : root;
    EmptySlots();
    library->Create("i");
    const std::string lines = Scope(
        "CreateTsLoggingSession", Check(root, anywhere ? "TSAL SetTsalPath('" + place + "')" : notFound),
        DataRootLines(root), anywhere ? SessionLines(Registration(place + "activities.xml"), place + "i") : notFound);
    EXPECT_EQ(Journal().substr(0, lines.size()), lines) << "files " << there;
  }
}

const std::string unanswerable(300, 'x');  // no file system has names of this length: to ask for one raises

TEST_F(SettingsSearch, SecondFileIsAskedForOnlyWhereTheFirstIsThere) {
  if (!System::pathsAreBytes) {
    GTEST_SKIP() << "every name has an answer here";
  }
  const std::string nowhere = Scope("CreateTsLoggingSession", Check(root, notFound), DataRootLines(root), notFound);
  const std::string raised = Scope(
      "CreateTsLoggingSession", Scope("CheckTsServiceAvailability", "TSAL IsTsServicePresent()", DataRootLines(root)));
  for (const auto& [first, lines] :
       {std::pair{folder / "elsewhere", nowhere}, std::pair{current, raised}, std::pair{dataRoot, raised}}) {
    remove(current / "TSAL.config");
    std::ofstream(first / "TSAL.config");
    library->CreateWith("i", unanswerable);
    EXPECT_EQ(Journal().substr(0, lines.size()), lines) << first;
  }
}

TEST_F(SettingsSearch, BringUpLooksAgainAfterTheCheck) {
  PutSettings(current);
  PutSettings(dataRoot);
  At("TSAL IsConnectable", [this] { remove(current / "TSAL.config"); });
  library->Create("i");
  const std::string lines =
      Scope("CreateTsLoggingSession", Check(root, "TSAL SetTsalPath('')"), DataRootLines(root),
            "TSAL SetTsalPath('" + root + "')", SessionLines(Registration(root + "activities.xml"), root + "i"));
  EXPECT_EQ(Journal().substr(0, lines.size()), lines);
}

}  // namespace
