// Executions, their versions and their identities.

#include "LocalTsTest.h"

#include <algorithm>
#include <cctype>
#include <functional>

namespace {

using Executions = LocalTsTest;

constexpr const char* unknownGuid = "00000000-0000-4000-8000-00000000000A";
constexpr const char* activities =
    "<Activities><Activity Name='Tomography' Description='all of it'>\n"
    "<ActivityVersion Name='TiltSeries' Version='1.0' Description='one &amp; all'/>\n"
    "<ActivityVersion Name='Section' Version='1.0'/></Activity></Activities>";

std::map<std::string, Types::ActivityVersion> Register(const std::filesystem::path& file) {
  return ActivityMethods::RegisterAndGetActivityVersions(file.string(), SessionHandle::Empty);
}

TEST_F(Executions, AnUpdateKeepsTheParentAndAddsToTheHistoryWhatDiffers) {
  Begin();
  ActivityExecution parent = Execution("parent");
  Save(parent);
  ActivityExecution child = Execution("child", &parent);
  child.Kind = INT32_MIN;
  Save(child);
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
  EXPECT_EQ(Recorded("SELECT code, at FROM statuses WHERE execution_id = 2 ORDER BY status_id"),
            "4|1970-01-01T00:00:00.000001Z\n4|2024-02-29T12:34:56.789012Z\n14|1969-12-31T23:59:59.999999Z\n"
            "4|1969-12-31T23:59:59.999999Z\n");
  EXPECT_EQ(Recorded("SELECT parent_id, kind, started_at FROM executions WHERE execution_id = 2"),
            "1|-2147483648|1970-01-01T00:00:00.000001Z\n");
}

TEST_F(Executions, WhatAnExecutionWasFirstSavedAsStays) {
  Begin();
  const auto versions = Register(folder.Write("activities.xml", activities));
  ActivityExecution first = Execution("first");
  ActivityExecution other = Execution("other");
  ActivityExecution saved = Execution("node", &first);
  saved.ActivityVersion = versions.at("TiltSeries");
  for (ActivityExecution* execution : {&first, &other, &saved}) {
    Save(*execution);
  }
  const std::string before = Recorded("SELECT * FROM execution_states");
  const struct {
    const ActivityExecution& execution;
    const char* word;
    std::function<void(ActivityExecution&)> change;
  } rows[] = {
      {saved, "node", [](auto& changed) { changed.Node = "Node"; }},
      {saved, "description", [](auto& changed) { changed.Description = "more"; }},
      {saved, "kind", [](auto& changed) { changed.Kind = 1; }},
      {saved, "version", [](auto& changed) { changed.ActivityVersion = {}; }},
      {saved, "version", [&](auto& changed) { changed.ActivityVersion = versions.at("Section"); }},
      {saved, "parent", [&](auto& changed) { changed.Parent = &other; }},
      {saved, "parent", [&](auto& changed) { changed.Parent = &saved; }},
      {first, "parent", [&](auto& changed) { changed.Parent = &saved; }},
  };
  for (const auto& [execution, word, change] : rows) {
    ActivityExecution changed = Load(execution.Id);
    changed.Status = Status(14, 2);
    change(changed);
    ExpectWords(ErrorOf([&changed = changed] { Save(changed); }), {execution.Id.GetGuid(), word});
  }
  EXPECT_EQ(Recorded("SELECT * FROM execution_states"), before);
}

TEST_F(Executions, UnfinishedIsWhatRunsAndWhatStandsAboveIt) {
  Begin();
  // 0 has 1, which has 2 and 3; 4 has 5; 6 has 7. Only 2 and 6 still run.
  static constexpr struct {
    int parent, code;
  } rows[] = {{-1, 14}, {0, 14}, {1, 4}, {1, 14}, {-1, 14}, {4, 14}, {-1, 4}, {6, 14}};
  std::vector<ActivityExecution> executions(std::size(rows));
  for (std::size_t at = 0; at < std::size(rows); ++at) {
    const auto [parent, code] = rows[at];
    executions[at] =
        Execution(std::to_string(at), parent < 0 ? nullptr : &executions[static_cast<std::size_t>(parent)]);
    Save(executions[at]);
    executions[at].Status = Status(code, 2);
    Save(executions[at]);
  }
  EXPECT_EQ(Recorded("SELECT node FROM unfinished ORDER BY execution_id"), "0\n1\n2\n6\n");
  EXPECT_EQ(Recorded("SELECT group_concat(root_id) FROM executions"), "1,1,1,1,5,5,7,7\n");
}

TEST_F(Executions, RegisteringAgainKeepsIdentitiesAndAnotherStoreTakesThemOver) {
  const auto file = folder.Write("activities.xml", activities);
  Begin();
  const auto first = Register(file);
  Begin();
  const auto again = Register(file);
  EXPECT_EQ(again.at("Section").Id, first.at("Section").Id);
  EXPECT_EQ(again.at("Section").Activity.Id, first.at("TiltSeries").Activity.Id);
  EXPECT_EQ(first.at("TiltSeries").Description, "one & all");
  EXPECT_EQ(Recorded("SELECT COUNT(*), COUNT(DISTINCT version_id), COUNT(DISTINCT session_id) FROM registrations"),
            "4|2|2\n");
  Begin("other.db");
  ActivityExecution execution = Execution("elsewhere");
  execution.ActivityVersion = first.at("TiltSeries");
  Save(execution);
  Save(execution);
  EXPECT_EQ(Load(execution.Id).ActivityVersion.Id, first.at("TiltSeries").Id);
  EXPECT_EQ(Recorded("SELECT v.name, a.name, a.description FROM activity_versions v JOIN activities a "
                     "USING (activity_id)",
                     "other.db"),
            "TiltSeries|Tomography|all of it\n");
}

TEST_F(Executions, AnIdentityThatIsNoneOrThatNobodyKnowsIsNamed) {
  Begin();
  static const struct {
    std::string guid, shown = guid;
  } rows[] = {{""},
              {"no guid"},
              {std::string("a\0b", 3), "a\\x00b"},
              {std::string(36, '-')},
              {"00000000-0000-4000-8000-00000000000g"},
              {unknownGuid, "00000000-0000-4000-8000-00000000000a"}};
  for (const auto& [guid, shown] : rows) {
    SCOPED_TRACE(shown);
    const Tsid id(guid);
    ActivityExecution known = Execution("known");
    known.Id = id;
    ActivityExecution child = Execution("child", &known);
    ActivityExecution versioned = Execution("versioned");
    versioned.ActivityVersion.Id = id;
    std::vector<std::string> errors = {ErrorOf([&] { Load(id); }), ErrorOf([&] { Save(child); }),
                                       ErrorOf([&] { SaveEvent(Event("e"), Tsid(), &id); })};
    if (!guid.empty()) {  // the other identities may be unset
      errors.push_back(ErrorOf([&] { Save(known); }));
      errors.push_back(ErrorOf([&] { SaveEvent(Event("e"), id); }));
    }
    if (!guid.empty() && guid != unknownGuid) {  // a version that nobody knows is added
      errors.push_back(ErrorOf([&] { Save(versioned); }));
    }
    for (const std::string& error : errors) {
      ExpectWords(error, {"'" + shown + "'", "expected"});
    }
    EXPECT_EQ(child.Id, Tsid());
  }
  EXPECT_EQ(Recorded("SELECT (SELECT COUNT(*) FROM executions) + (SELECT COUNT(*) FROM events)"), "0\n");
}

TEST_F(Executions, AnEventIsLinkedToWhatItNamesAndToNothingElse) {
  Begin();
  ActivityExecution execution = Execution("node");
  Save(execution);
  std::string upper = execution.Id.GetGuid();
  std::transform(upper.begin(), upper.end(), upper.begin(), [](int c) { return static_cast<char>(std::toupper(c)); });
  const Tsid shouted(upper);
  const auto stored = SystemMethods::SaveInstrumentConfigWithResult("1", "2", "3", "4", "5", "6", "7", "8", "9");
  SaveEvent(Event("none"));
  SaveEvent(Event("execution"), Tsid(), &shouted);
  SaveEvent(Event("configuration"), stored.ConfigurationId);
  EXPECT_EQ(Recorded("SELECT name, execution_id, configuration_id, session_id FROM events ORDER BY event_id"),
            "none|NULL|NULL|1\nexecution|1|NULL|1\nconfiguration|NULL|1|1\n");
  EXPECT_EQ(Recorded("SELECT configuration_text, text2, vendor_name, host_name, option_text, instrument_class, "
                     "model_name, text8, text9, session_id FROM configurations"),
            "1|2|3|4|5|6|7|8|9|1\n");
}

}  // namespace
