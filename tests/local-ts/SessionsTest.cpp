// Sessions: where they record, for how long, and many on one store.

#include "LocalTsTest.h"
#include "support/System.h"

#include <thread>

namespace {

using Sessions = LocalTsTest;

TEST_F(Sessions, TheOneBegunLastCountsAndEachKeepsItsDatabaseWhateverChanges) {
  ExpectError([] { SaveEvent(Event("e")); }, {"no TS session was begun", "expected a BeginSession"});
  fs::current_path(folder.path);
  ExpectError([] { TSInstance::BeginSession(); }, {"'" + (folder / "TSAL.config").string() + "'", "cannot be read: "});
  const TestStore store(folder / "first.db");
  store.Make();
  folder.Write("TSAL.config", "<TSAL><Database " + store.Attributes("./first.db") + "/></TSAL>");
  const SessionHandle first = TSInstance::BeginSession("one", "two", "three");
  fs::current_path("/");
  const ActivityExecution execution = Saved("in first");
  Begin("second.db");
  SaveEvent(Event("second"));
  ExpectError([&] { Load(execution.Id); }, {execution.Id.GetGuid()});
  Begin("first.db");
  // Each session's connection has read before the other wrote: none may hold on to what it saw then.
  Load(execution.Id);
  SaveEvent(Event("old session"), Tsid(), &execution.Id, first);
  SaveEvent(Event("new session"));
  EXPECT_EQ(Recorded("SELECT name, CASE WHEN instrument = host THEN 1 END, text1, text2, text3 FROM events JOIN "
                     "sessions USING (session_id)",
                     "first.db"),
            "old session|1|one|two|three\nnew session|NULL|||\n");
  EXPECT_EQ(Recorded("SELECT name, instrument FROM events JOIN sessions USING (session_id)", "second.db"),
            "second|Scope\n");
}

TEST_F(Sessions, NothingIsAcknowledgedIntoAFileThatIsNoLongerThere) {
  if (!System::pathsAreBytes) {
    GTEST_SKIP() << "a file stays here while a session has it open";
  }
  Begin("anothers.db");
  Begin("elsewhere.db");
  const std::vector<const char*> all = {"", "-wal", "-shm"};
  const std::tuple<const char*, std::vector<const char*>, std::function<void()>> rows[] = {
      {"removed", all, [] {}},
      {"removed, but not its log", {""}, [] {}},
      {"empty", all, [&] { folder.Write("ts.db", ""); }},
      {"with another host's session", all, [&] { copy(folder / "anothers.db", folder / "ts.db"); }}};
  for (const auto& [what, files, replace] : rows) {
    SCOPED_TRACE(what);
    Begin();
    const ActivityExecution known = Saved("known");
    SaveEvent(Event("kept"), Tsid(), &known.Id);
    const auto move = [&, &moved = files](const std::string& from, const std::string& to) {
      for (const char* const file : moved) {
        rename(folder / (from + file), folder / (to + file));
      }
    };
    move("ts.db", "away.db");
    replace();
    const std::string before = ContentOf(folder / "ts.db");
    for (int attempt = 0; attempt < 3; ++attempt) {
      ExpectError([] { SaveEvent(Event("lost")); }, {"ts.db", "removed or replaced", "expected"});
      ExpectError([&] { Load(known.Id); }, {"ts.db", "removed or replaced", "expected"});
    }
    EXPECT_EQ(ContentOf(folder / "ts.db"), before);
    move("away.db", "ts.db");
    SaveEvent(Event("back"));
    EXPECT_EQ(Recorded("SELECT name FROM events"), "kept\nback\n");
    Begin("elsewhere.db");
    fs::remove(folder / "ts.db");
  }
}

// Others would look for the log beside the new name.
TEST_F(Sessions, NothingIsAcknowledgedIntoAFileThatWasRenamedBehindALink) {
  if (!System::pathsAreBytes) {
    GTEST_SKIP() << "a file stays here while a session has it open";
  }
  create_symlink("one.db", folder / "ts.db");
  Begin();
  SaveEvent(Event("kept"));
  rename(folder / "one.db", folder / "two.db");
  fs::remove(folder / "ts.db");
  create_symlink("two.db", folder / "ts.db");
  ExpectError([] { SaveEvent(Event("lost")); }, {"ts.db", "removed or replaced", "expected"});
}

TEST_F(Sessions, AFolderWithAnyNameHoldsItsOwnDatabase) {
  std::vector<std::string> names = {"it's", "two  blanks in it", "a = b; c", "100%41"};
  if (System::pathsAreBytes) {
    names.insert(names.end(), {"blank at the end ", "say \"a = b\" c", "tab\tand\nbreak", "\xff", "100%41?mode=ro"});
  }
  for (const std::string& name : names) {
    create_directory(folder / name);
    Configure("ts.db", name);
    TSInstance::BeginSession();
    SaveEvent(Event(name));
    EXPECT_NE(ContentOf(folder / name / "ts.db-wal"), "") << name;
  }
}

/// Saves executions with a child and an event of two parameters each.
void Record(const std::string& name) {
  for (int at = 0; at < 20; ++at) {
    const ActivityExecution parent = Saved(name), child = Saved(name, &parent);
    SaveEvent(Event(name, InstrumentParameterInt(name, 2), InstrumentParameterInt(name, 4)), Tsid(), &child.Id);
    EXPECT_EQ(Load(child.Id).Node, name);
  }
}

TEST_F(Sessions, ProcessesThatMakeOneStoreAtOnceAndTheirThreadsLoseNothing) {
  constexpr const char* variable = "VELORA_TEST_PROCESS";
  if (const char* const settings =
          std::getenv(variable)) {  // one of the processes: where the settings are, and its name
    const std::string path = std::string(settings).substr(1), name(1, *settings);
    TSInstance::SetTsalPath(path);
    TSInstance::BeginSession();
    std::thread one([&] { Record(name + "1"); }), two([&] { Record(name + "2"); });
    for (int at = 0; at < 9; ++at) {  // settings and sessions change meanwhile
      TSInstance::SetTsalPath(path);
      TSInstance::BeginSession();
    }
    one.join(), two.join();
    return;
  }
  Configure("ts.db");
  std::vector<std::intptr_t> processes;
  for (const std::string name : {"a", "b", "c"}) {
    System::SetVariable(variable, name + folder.path.string());
    processes.push_back(System::StartCase("Sessions.ProcessesThatMakeOneStoreAtOnceAndTheirThreadsLoseNothing"));
  }
  for (const std::intptr_t process : processes) {
    EXPECT_EQ(System::ExitCodeOf(process), 0);
  }
  // Every row belongs to what its own writer saved with it.
  EXPECT_EQ(Recorded("SELECT e.name, COUNT(*), COUNT(DISTINCT e.event_id), COUNT(DISTINCT x.parent_id), SUM(position) "
                     "FROM events e JOIN executions x USING (execution_id) JOIN executions p ON p.execution_id = "
                     "x.parent_id JOIN parameters v USING (event_id) WHERE e.name = x.node AND e.name = p.node AND "
                     "e.name = v.name AND x.root_id = x.parent_id AND value_number = 2 * position GROUP BY e.name"),
            "a1|40|20|20|60\na2|40|20|20|60\nb1|40|20|20|60\nb2|40|20|20|60\nc1|40|20|20|60\nc2|40|20|20|60\n");
  EXPECT_EQ(Recorded("SELECT COUNT(*), (SELECT COUNT(*) FROM ts_schema) FROM sessions"), "30|2\n");
}

}  // namespace
