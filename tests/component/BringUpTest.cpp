// What CreateTsLogging writes, and asks of TS and of the instrument, in which order.

#include "support/ComponentTest.h"
#include "support/Patterns.h"

namespace {

const std::string pathIsCurrent = "TSAL SetTsalPath('')";

using BringUp = ComponentTest;

TEST_F(BringUp, FirstCallDoesEverythingAndALaterOneAgainWithTheSameObjectUnchecked) {
  PutSettings(current);
  const auto first = library->Create("instrument.txt");
  EXPECT_EQ(Journal(), Scope("CreateTsLoggingSession", Check(root, pathIsCurrent), DataRootLines(root),
                             SessionLines(Registration("activities.xml"), "instrument.txt")) +
                           Scope("GetInstance", Check(root)));
  EXPECT_EQ(library->CreateWith("instrument.txt", "activities.xml"), first);
  EXPECT_EQ(Journal(),
            Scope("CreateTsLoggingSession", Check(root), DataRootLines(root), SessionLines("", "instrument.txt")) +
                Scope("GetInstance"));
}

TEST_F(BringUp, FilesAreNamedAsTheyWereGivenOrBehindTheDataRoot) {
  // The file system takes a name up to its zero byte; TS gets the whole of it.
  const std::string cutOff("activities.xml\0tail", 19);
  const std::string roundabout = "./x//../own.xml", absolute = (folder / "own.xml").string();
  struct Row {
    const std::filesystem::path& place;
    std::string activities, instrument, before;
  };
  const Row rows[] = {{dataRoot, cutOff, oddText, root},
                      {dataRoot, roundabout, roundabout, root},
                      {dataRoot, absolute, absolute, ""},
                      {current, roundabout, roundabout, ""},
                      {current, absolute, absolute, ""}};
  folder.Write("own.xml", "");
  for (const Row& row : rows) {
    SCOPED_TRACE(row.place / row.activities);
    PutSettings(row.place);
    create_directory(row.place / "x");
    std::ofstream(row.place / "own.xml");
    EmptySlots();
    library->CreateWith(row.instrument, row.activities);
    const bool here = row.place == current;
    // Behind the data root it becomes a path and a text again, which on Windows need not have the same letters.
    const std::string instrument = here ? row.instrument : std::filesystem::path(row.instrument).string();
    EXPECT_EQ(Journal(), Scope("CreateTsLoggingSession", Check(root, "TSAL SetTsalPath('" + (here ? "" : root) + "')"),
                               DataRootLines(root),
                               SessionLines(Registration(row.before + row.activities), row.before + instrument)) +
                             Scope("GetInstance", Check(root)));
  }
}

TEST_F(BringUp, FirstObjectIsCheckedForTheDefaultFileWhateverBringUpWasGiven) {
  std::ofstream("TSAL.config");
  std::ofstream("mine.xml");
  const auto logging = library->CreateWith(oddText, "mine.xml");
  EXPECT_EQ(Journal(), Scope("CreateTsLoggingSession", Check(root, pathIsCurrent), DataRootLines(root),
                             SessionLines(Registration("mine.xml"), oddText)) +
                           Scope("GetInstance", Check(root, notFound)));
  logging->UpdateActivityExecution("");
  EXPECT_EQ(Journal(), Scope("UpdateActivityExecution", "info Update activity execution. guid: "));
}

TEST_F(BringUp, StateOfTsDecidesHowFarItGoesAndTheObjectIsHandedOutAnyhow) {
  struct Row {
    bool present, connectable, settings;
    std::string lines;
  };
  const Row rows[] = {
      {false, true, true,
       Scope("CreateTsLoggingSession", checkedPresence) + Scope("GetInstance", checkedPresence, notSupported)},
      {true, false, true,
       Scope("CreateTsLoggingSession", Check(root, pathIsCurrent)) + Scope("GetInstance", Check(root), notSupported)},
      {true, true, false,
       Scope("CreateTsLoggingSession", Check(root, notFound), DataRootLines(root), notFound) +
           Scope("GetInstance", Check(root, notFound))},
      {true, false, false,
       Scope("CreateTsLoggingSession", Check(root, notFound)) +
           Scope("GetInstance", Check(root, notFound), notSupported)},
  };
  for (const Row& row : rows) {
    row.settings ? PutSettings(current) : void(remove(current / "TSAL.config"));
    Fakes::TheScene().answers.servicePresent = row.present;
    Fakes::TheScene().answers.connectable = row.connectable;
    EmptySlots();
    EXPECT_NE(library->Create("i"), nullptr);
    EXPECT_EQ(Journal(), row.lines);
  }
}

TEST_F(BringUp, HostsGatewayIsAskedEverythingAndToldThePathEachTime) {
  PutSettings(current);
  library->SetGateway(nullptr, std::make_shared<HostGateway>("gateway"));
  library->Create("i");
  const std::string bringUp = Scope("CreateTsLoggingSession", Check(root, pathIsCurrent), DataRootLines(root),
                                    pathIsCurrent, SessionLines(Registration("activities.xml"), "i")) +
                              Scope("GetInstance", Check(root, pathIsCurrent));
  EXPECT_EQ(Journal(),
            Scope("SetTolvaServicesInstance") + ReplaceMatches(bringUp, "TSAL ", "the host's gateway:\nTSAL "));
}

TEST_F(BringUp, LinesOfAScopeGoToTheLoggerThatItTookAtItsStart) {
  int fetched = 0, opened = 0;
  Fakes::TheScene().hook = [&](const std::string& entry) {
    fetched += entry == "Logger GetInstance" ? 1 : 0;
    opened += StartsWith(entry, "info >>") ? 1 : 0;
  };
  for (const bool connectable : {false, true}) {  // a warning, errors, and an informational line
    Fakes::TheScene().answers.connectable = connectable;
    EmptySlots();
    library->Create("i")->SaveInstrumentEvent("A", "");
  }
  EXPECT_GT(opened, 0);
  EXPECT_EQ(fetched, opened);
}

TEST_F(BringUp, InstrumentIsDescribedAsFarAsItCanBeAsked) {
  struct Row {
    bool available;
    std::int32_t type;
    std::string options, fileText, sentOptions, sentModel;
  };
  const Row rows[] = {
      {false, 1, "options", "text", "", ""},         {true, 0, "options", "", "options", "Kelmor"},
      {true, 1, oddText, oddText, oddText, "Morda"}, {true, 2, "", "text", "None", "Varen"},
      {true, 3, "None", "text", "None", "?"},        {true, -1, " ", "text", " ", "?"},
  };
  PutSettings(current);
  for (const Row& row : rows) {
    Fakes::Answers& answers = Fakes::TheScene().answers;
    answers.instrumentAvailable = row.available;
    answers.microscopeType = row.type;
    answers.optionText = row.options;
    answers.fileText = row.fileText;
    library->Create("i");
    const std::string lines = Journal();
    EXPECT_NE(lines.find("File('i')\n" + InstrumentLines(row.fileText, row.available, row.sentOptions, row.sentModel) +
                         "info <<"),
              std::string::npos)
        << lines;
  }
}

}  // namespace
