// The parent execution of the process, and the configurator that sets it.

#include "support/ComponentTest.h"

namespace {

class Parent : public ComponentTest {
 protected:
  std::string Set(const std::string& node) {
    return library->NewConfigurator()->SetParentActivityExec(node, "a", "b", "c");
  }
};

const std::string absent = "error Kv7 for Velora is not supported because TS Server is not installed or available";

/// A set-up that finds TS present. `search` is what the check's search led to, `session` what came before the save.
std::string SettingOf(const std::string& root, const std::string& search, const std::string& session,
                      const std::string& version) {
  return Scope("SetParentActivityExec", Check(root, search), "info Set Parent Activity execution", DataRootLines(root),
               session,
               "TSAL SaveActivityExecution('' version '" + version +
                   "' status 14 now node 'n' description 'Set Parent ActivityExec' kind 5 parent null, Empty)");
}

TEST_F(Parent, IsSetUpByTheFilesWhereTheyLie) {
  const auto sessionWith = [](const std::string& arguments, const std::string& file) {
    return Lines("TSAL BeginSession(" + arguments + ")", "session released", Registration(file));
  };
  struct Place {
    const char* name;
    std::filesystem::path folder;
    std::string search, session, version = "version of AutoFunction";
  };
  const std::string own = "own.xml";
  Fakes::TheScene().answers.versions = {"AutoFunction"};
  const Place places[] = {
      {"current directory", current, "TSAL SetTsalPath('')", sessionWith("", own)},
      {"data root", dataRoot, "TSAL SetTsalPath('" + root + "')",
       sessionWith('\'' + oddText + "', 'b', 'c'", root + own)},
      {"nowhere", folder.path, notFound, notFound, ""},
  };
  for (const Place& place : places) {
    SCOPED_TRACE(place.name);
    Unload();
    library = std::make_unique<Library>(file);
    PutSettings(place.folder);
    rename(place.folder / "activities.xml", place.folder / own);
    EXPECT_EQ(library->NewConfigurator()->SetParentActivityExec("n", oddText, "b", "c", own), "new guid");
    EXPECT_EQ(Journal(), SettingOf(root, place.search, place.session, place.version));
    remove(place.folder / "TSAL.config");
  }
}

TEST_F(Parent, StaysUntilAnotherWasSaved) {
  PutSettings(current);
  Fakes::Answers& answers = Fakes::TheScene().answers;
  const auto logging = library->Create("i");
  const auto parentOfANewExecution = [&] {
    Journal();
    static_cast<void>(logging->CreateActivityExecution("v", "n", "d"));
    const std::string journal = Journal();
    const std::size_t at = journal.find(" parent ") + 8;
    return journal.substr(at, journal.find(',', at) - at);
  };
  EXPECT_EQ(parentOfANewExecution(), "null");
  answers.newGuid = "first";
  EXPECT_EQ(Set("n"), "first");
  EXPECT_EQ(parentOfANewExecution(), "'first'");

  answers.servicePresent = false;
  Journal();
  EXPECT_EQ(Set("n"), "first");
  EXPECT_EQ(Journal(), Scope("SetParentActivityExec", checkedPresence, absent));

  answers.servicePresent = true;
  answers.newGuid = "second";
  EXPECT_EQ(Set("n"), "second");
  EXPECT_EQ(parentOfANewExecution(), "'second'");
}

TEST_F(Parent, ConfiguratorIsInItsSlotBeforeTheFormerOneIsReleased) {
  std::shared_ptr<Library::ITsLoggingConfigurator> slot;
  library->GetConfigurator(slot);
  ASSERT_NE(slot, nullptr);
  EXPECT_EQ(slot.use_count(), 1);
  Library::ITsLoggingConfigurator* found = nullptr;
  slot.reset(slot.get(), [former = slot, &slot, &found](auto*) { found = slot.get(); });
  const auto* const former = slot.get();
  library->GetConfigurator(slot);
  EXPECT_EQ(found, slot.get());
  EXPECT_NE(found, former);
  EXPECT_NE(library->NewConfigurator(), library->NewConfigurator());
}

}  // namespace
