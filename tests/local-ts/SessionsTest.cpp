// Sessions: where they record, and for how long.

#include "LocalTsTest.h"

#include <cstdlib>
#include <functional>

namespace {

using Sessions = LocalTsTest;
namespace fs = std::filesystem;

TEST_F(Sessions, EveryOperationNeedsASession) {
  static const std::function<void()> operations[] = {
      [] { ActivityMethods::RegisterAndGetActivityVersions("none.xml", SessionHandle::Empty); },
      [] { ActivityMethods::SaveActivityExecution(*std::make_unique<ActivityExecution>(), SessionHandle::Empty); },
      [] { Load(Tsid("00000000-0000-4000-8000-000000000000")); },
      [] { SaveEvent(Event("e")); },
      [] { SystemMethods::SaveInstrumentConfigWithResult({}, {}, {}, {}, {}, {}, {}, {}, {}); },
  };
  for (const auto& operation : operations) {
    ExpectWords(ErrorOf(operation), {"no TS session was begun", "expected a BeginSession"});
  }
}

TEST_F(Sessions, TheOneBegunLastCountsAndAHandleNamesItsOwn) {
  const SessionHandle first = Begin("first.db");
  ActivityExecution execution = Execution("in first");
  Save(execution);
  Begin("second.db");
  SaveEvent(Event("second"));
  ExpectWords(ErrorOf([&] { Load(execution.Id); }), {execution.Id.GetGuid()});
  Begin("first.db");
  // Each session's connection has read before the other wrote: none may hold on to what it saw then.
  Load(execution.Id);
  SaveEvent(Event("old session"), Tsid(), &execution.Id, first);
  SaveEvent(Event("new session"));
  EXPECT_EQ(Recorded("SELECT name, session_id FROM events ORDER BY event_id", "first.db"),
            "old session|1\nnew session|2\n");
  EXPECT_EQ(Recorded("SELECT name, instrument FROM events JOIN sessions USING (session_id)", "second.db"),
            "second|Scope 1\n");
}

TEST_F(Sessions, ASessionKeepsItsDatabaseWhenSettingsAndCurrentDirectoryChange) {
  create_directory(folder / "elsewhere");
  folder.Write("TSAL.config", "<TSAL><Database Backend='sqlite3' Connection='./ts.db'/></TSAL>");
  fs::current_path(folder.path);
  TSInstance::SetTsalPath("");
  EXPECT_TRUE(TSInstance::IsConnectable());
  TSInstance::BeginSession("one", "two", "three");
  fs::current_path(folder / "elsewhere");
  fs::remove(folder / "TSAL.config");
  SaveEvent(Event("kept"));
  EXPECT_EQ(
      Recorded("SELECT name, instrument = host, text1, text2, text3 FROM events JOIN sessions USING (session_id)"),
      "kept|1|one|two|three\n");
  ExpectWords(ErrorOf([] { TSInstance::BeginSession(); }), {(folder / "elsewhere/TSAL.config").string()});
  fs::remove(folder / "elsewhere");
  ExpectWords(ErrorOf([] { TSInstance::IsConnectable(); }), {"TSAL.config", "current directory"});
  fs::current_path("/");
}

TEST_F(Sessions, NothingIsAcknowledgedIntoAFileThatIsNoLongerThere) {
  const auto remove = [this] { fs::remove(folder / "ts.db"); };
  const auto replace = [this] { fs::rename(folder.Write("other.db", ""), folder / "ts.db"); };
  for (const std::function<void()>& take : {std::function<void()>(remove), std::function<void()>(replace)}) {
    Begin();
    SaveEvent(Event("kept"));
    take();
    for (int attempt = 0; attempt < 3; ++attempt) {
      ExpectWords(ErrorOf([] { SaveEvent(Event("lost")); }), {"ts.db", "removed or replaced", "expected"});
    }
    Begin();
    SaveEvent(Event("in the new one"));
    EXPECT_EQ(Recorded("SELECT name FROM events"), "in the new one\n");
    fs::remove(folder / "ts.db");
  }
}

TEST_F(Sessions, AFolderWithAnyNameHoldsItsOwnDatabase) {
  for (const char* name : {"it's", "two  blanks ", "\"quoted\"", "a = b", "say \"a = b\" c", "tab\tand\nbreak", "\xff",
                           "100%41?mode=ro", ":memory:"}) {
    SCOPED_TRACE(name);
    create_directory(folder / name);
    std::ofstream(folder / name / "TSAL.config") << Config("ts.db");
    TSInstance::SetTsalPath((folder / name).string());
    EXPECT_TRUE(TSInstance::IsConnectable());
    TSInstance::BeginSession();
    SaveEvent(Event(name));
    copy_file(folder / name / "ts.db", folder / "copy.db", fs::copy_options::overwrite_existing);
    copy_file(folder / name / "ts.db-wal", folder / "copy.db-wal", fs::copy_options::overwrite_existing);
    EXPECT_EQ(Recorded("SELECT COUNT(*) FROM events", "copy.db"), "1\n");
  }
}

TEST_F(Sessions, TheServiceIsThereUnlessItIsSaidToBeAbsent) {
  for (const char* value : {"", "absent ", "Absent", "present"}) {
    setenv("TSAL_SERVICE", value, 1);
    EXPECT_TRUE(TSInstance::IsTsServicePresent()) << value;
  }
  setenv("TSAL_SERVICE", "absent", 1);
  EXPECT_FALSE(TSInstance::IsTsServicePresent());
  unsetenv("TSAL_SERVICE");
  EXPECT_TRUE(TSInstance::IsTsServicePresent());
}

}  // namespace
