// Several threads and several processes on one store.

#include "LocalTsTest.h"

#include <sys/wait.h>
#include <unistd.h>

#include <thread>

namespace {

using SharedStore = LocalTsTest;

/// Saves executions with a child and an event of two parameters each, and looks at what it saved.
std::string ErrorOfRecording(const std::string& name) {
  return ErrorOf([&] {
    for (int at = 0; at < 20; ++at) {
      ActivityExecution parent = Execution(name);
      Save(parent);
      ActivityExecution child = Execution(name, &parent);
      Save(child);
      SaveEvent(Event(name, Types::InstrumentParameterInt(name, 2), Types::InstrumentParameterInt(name, 4)), Tsid(),
                &child.Id);
      EXPECT_EQ(Load(child.Id).Node, name);
    }
  });
}

// Every row belongs to what its own writer saved with it.
constexpr const char* whatIsThere =
    "SELECT e.name, COUNT(DISTINCT e.event_id), COUNT(DISTINCT x.execution_id), COUNT(DISTINCT p.execution_id), "
    "CAST(SUM(v.value_number) AS INTEGER) FROM events e JOIN executions x ON x.execution_id = e.execution_id AND "
    "x.node = e.name "
    "JOIN executions p ON p.execution_id = x.parent_id AND p.execution_id = x.root_id AND p.node = e.name "
    "JOIN parameters v ON v.event_id = e.event_id AND v.name = e.name GROUP BY e.name ORDER BY e.name";

TEST_F(SharedStore, ThreadsOfOneSessionLoseNothing) {
  Begin();
  std::vector<std::thread> threads;
  for (const char* name : {"a", "b", "c", "d"}) {
    threads.emplace_back([name] { EXPECT_EQ(ErrorOfRecording(name), ""); });
  }
  threads.emplace_back([this] {  // settings and sessions change meanwhile
    for (int at = 0; at < 10; ++at) {
      TSInstance::SetTsalPath(folder.path.string());
      EXPECT_TRUE(TSInstance::IsConnectable());
      TSInstance::BeginSession();
    }
  });
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(Recorded(whatIsThere), "a|20|20|20|120\nb|20|20|20|120\nc|20|20|20|120\nd|20|20|20|120\n");
  EXPECT_EQ(Recorded("SELECT COUNT(*) FROM sessions"), "11\n");
}

TEST_F(SharedStore, ProcessesThatMakeOneStoreAtOnceLoseNothing) {
  std::vector<pid_t> children;
  Configure("ts.db");
  for (const char* name : {"a", "b", "c"}) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      std::string error = ErrorOf([] { TSInstance::BeginSession(); });
      error += ErrorOfRecording(name);
      std::fputs(error.c_str(), stderr);
      _exit(error.empty() && !HasFailure() ? 0 : 1);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) {
    int status = -1;
    EXPECT_TRUE(waitpid(child, &status, 0) == child && status == 0);
  }
  EXPECT_EQ(Recorded(whatIsThere), "a|20|20|20|120\nb|20|20|20|120\nc|20|20|20|120\n");
  EXPECT_EQ(Recorded("SELECT COUNT(*), (SELECT COUNT(*) FROM ts_schema) FROM sessions"), "3|1\n");
}

}  // namespace
