// Executions, their versions and their identities.

#include "LocalTsTest.h"

namespace {

using Executions = LocalTsTest;

constexpr const char* unknownGuid = "00000000-0000-4000-8000-00000000000a";

TEST_F(Executions, AnUpdateAddsAStatusThatDiffersAndKeepsTheParentAndAllElse) {
  Begin();
  const ActivityExecution parent = Saved("parent"), child = Saved("child", &parent);
  for (const auto& [code, time] :
       {std::pair(4, 1LL), {4, 1'709'210'096'789'012}, {4, 1'709'210'096'789'012}, {14, -1}, {14, -1}, {4, -1}}) {
    ActivityExecution loaded = Load(child.Id);
    EXPECT_EQ(loaded.Parent, nullptr);
    loaded.Status = Status(code, time);
    Save(loaded);
    EXPECT_EQ(loaded.Id, child.Id);
    EXPECT_EQ(Load(child.Id).Status.Code, loaded.Status.Code);
    EXPECT_EQ(Load(child.Id).Status.Time, loaded.Status.Time);
  }
  const std::pair<const char*, std::function<void(ActivityExecution&)>> rows[] = {
      {"node", [](auto& changed) { changed.Node = "Node"; }},
      {"description", [](auto& changed) { changed.Description = "more"; }},
      {"kind", [](auto& changed) { changed.Kind = 0; }},
      {"activity version", [](auto& changed) { changed.ActivityVersion.Id = Tsid(unknownGuid); }},
      {"parent, or none", [&](auto& changed) { changed.Parent = &child; }},
      {"parent, or none", [&](auto& changed) { changed = parent, changed.Parent = &child; }}};
  for (const auto& [word, change] : rows) {
    ActivityExecution changed = Load(child.Id);
    change(changed);
    changed.Status = Status(14, 2);
    ExpectError([&] { Save(changed); }, {"execution '" + changed.Id.GetGuid() + "' was first saved with another " +
                                         word + "; expected that one again"});
  }
  ActivityExecution versioned;  // with the version that was rolled back above
  versioned.ActivityVersion.Id = Tsid(unknownGuid);
  Save(versioned);
  EXPECT_EQ(Load(versioned.Id).ActivityVersion.Id, Tsid(unknownGuid));
  for (ActivityExecution done : {parent, Saved("done", &parent)}) {
    done.Status = Status(14, 1);
    Save(done);
  }
  EXPECT_EQ(Recorded("SELECT node, root_id, parent_id FROM unfinished ORDER BY execution_id"),
            "parent|1|NULL\nchild|1|1\n");
  EXPECT_EQ(Recorded("SELECT code, at FROM statuses WHERE execution_id = 2 ORDER BY status_id"),
            "4|1970-01-01T00:00:00.000001Z\n4|2024-02-29T12:34:56.789012Z\n"
            "14|1969-12-31T23:59:59.999999Z\n4|1969-12-31T23:59:59.999999Z\n");
  EXPECT_EQ(
      Recorded("SELECT parent_id, kind, description, version_id, started_at FROM executions WHERE node = 'child'"),
      "1|-2147483648||NULL|1970-01-01T00:00:00.000001Z\n");
}

TEST_F(Executions, RegisteringAgainKeepsIdentitiesAndAnotherStoreTakesThemOver) {
  const std::string file = folder
                               .Write("activities.xml",
                                      "<Activities><Activity Name='Tomography' Description='all of it'>"
                                      "<ActivityVersion Name='TiltSeries' Version='1.0' Description='one &amp; all'/>"
                                      "<ActivityVersion Name='Section' Version='1.0'/></Activity></Activities>")
                               .string();
  const auto beginAndRegister = [&] { return ActivityMethods::RegisterAndGetActivityVersions(file, Begin()); };
  const auto first = beginAndRegister(), again = beginAndRegister();
  EXPECT_EQ(again.at("Section").Id, first.at("Section").Id);
  EXPECT_EQ(Recorded("SELECT COUNT(*), COUNT(DISTINCT version_id), COUNT(DISTINCT session_id) FROM registrations"),
            "4|2|2\n");
  Begin("other.db");
  ActivityExecution execution;
  execution.ActivityVersion = first.at("TiltSeries");
  Save(execution);
  Save(execution);
  EXPECT_EQ(Load(execution.Id).ActivityVersion.Id, first.at("TiltSeries").Id);
  EXPECT_EQ(Recorded("SELECT v.name, v.description, a.name, a.description FROM activity_versions v, activities a",
                     "other.db"),
            "TiltSeries|one & all|Tomography|all of it\n");
}

TEST_F(Executions, WhatIsKnownOfThemIsBoundedAndHidesNothingThatOthersDo) {
  const SessionHandle another = Begin();
  Begin();
  ActivityExecution first = Saved("node"), watched = Saved("node");
  watched.Status = Status(14, 2);
  ActivityMethods::SaveActivityExecution(watched, another);
  EXPECT_EQ(Load(watched.Id).Status.Code, Enums::ActivityExecStatus::Done);
  for (int more = 0; more < 256; ++more) {
    Saved("more");
  }
  // As no host can: what was kept does not change, and what was not kept does.
  const auto changeAll = [&](const std::string& assignment) {
    TestStore(folder / "ts.db")
        .Open()
        ->RunScript((TestStore::OnServer() ? "ALTER TABLE executions DISABLE TRIGGER ALL;"
                                           : "DROP TRIGGER IF EXISTS executions_no_update;") +
                    ("UPDATE executions SET " + assignment));
  };
  const ActivityExecution wordy = Saved(std::string(3000, 'n')), last = Saved("node");
  changeAll("node = 'changed'");
  EXPECT_EQ(Load(last.Id).Node, "node");
  EXPECT_EQ(Load(first.Id).Node, "changed");
  EXPECT_EQ(Load(wordy.Id).Node, "changed");
  changeAll("guid = 'another ' || execution_id");
  for (const ActivityExecution& gone : {first, last}) {
    ExpectError([&] { Load(gone.Id); }, {"execution '" + gone.Id.GetGuid() + "' is not known to this TS"});
  }
}

TEST_F(Executions, AnIdentityThatIsNoneOrThatNobodyKnowsIsNamedAndCostsNoConnection) {
  Begin();
  // A server knows since when there are connections; a file loses its log with the last one.
  const auto connection = [&] {
    return TestStore::OnServer() ? Recorded(
                                       "SELECT CAST(MIN(backend_start) AS text) FROM pg_stat_activity WHERE "
                                       "datname = current_database() AND backend_type = 'client backend'")
                                 : std::to_string(fs::exists(folder / "ts.db-wal"));
  };
  const std::string kept = connection();
  for (const auto& [guid, shown] : {std::pair("a\0b"s, "a\\x00b"),
                                    {"00000000-0000-4000-8000-00000000000g", "00000000-0000-4000-8000-00000000000g"},
                                    {"00000000-0000-4000-8000-00000000000A", unknownGuid}}) {
    const Tsid id(guid);
    ActivityExecution known;
    known.Id = id;
    const auto words = {"'"s + shown + "'", "expected"s};
    for (const std::function<void()>& action : std::initializer_list<std::function<void()>>{
             [&] { Load(id); }, [&] { Save(known); }, [&] { Saved("child", &known); },
             [&] { SaveEvent(Event("e"), id); }, [&] { SaveEvent(Event("e"), Tsid(), &id); }}) {
      ExpectError(action, words);
      EXPECT_EQ(connection(), kept);
    }
  }
  ExpectError([] { Load(Tsid()); }, {"''", "expected"});
  ActivityExecution versioned;
  versioned.ActivityVersion.Id = Tsid("no guid");
  ExpectError([&] { Save(versioned); }, {"'no guid'", "expected"});
  EXPECT_EQ(Recorded("SELECT (SELECT COUNT(*) FROM executions) + (SELECT COUNT(*) FROM events)"), "0\n");
}

}  // namespace
