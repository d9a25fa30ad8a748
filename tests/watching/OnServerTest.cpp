// What only a server does while its store is watched: it is restarted, its rows become visible late, and it takes in
// the rows of other stores.

#include "Watching.h"
#include "postgresql/Server.h"
#include "store/recording/Preparation.h"

namespace {

using namespace Velora::Ts;

class WatchingServer : public Watching {
 protected:
  WatchingServer() { Configure("Backend='postgresql' Connection='dbname=postgres'"); }
  static SqlConnection Open() { return OpenServer("dbname=postgres"); }

  const Server server{folder / "server"};
};

TEST_F(WatchingServer, TellsTheTruthAgainAfterARestart) {
  ScriptedHost recording(host, {[](Recorder& recorder) { recorder.Begin("one", "TiltSeries"); },
                                [](Recorder& recorder) { recorder.Event("one", "Exposed", "Dose", "1"); }});
  recording.Next();
  const auto watch = Begin();
  const char* const running = "Scope 7 running, 1 alive | one running in one, 0 events | newest one";
  EXPECT_EQ(SaidOnce(*watch, running), running);
  server.Crash();
  const char* const gone = "error\nScope 7 unknown, 0 alive | one unknown in one, 0 events | newest one";
  EXPECT_EQ(SaidOnce(*watch, gone), gone);
  server.Resume();
  recording.Next();  // which takes its lock again
  const char* const again = "Scope 7 running, 1 alive | one running in one, 1 events, Exposed Dose=\"1\" | newest one";
  EXPECT_EQ(SaidOnce(*watch, again), again);
}

TEST_F(WatchingServer, CountsEventsThatBecomeVisibleAfterLaterOnes) {
  ScriptedHost recording(host, {[](Recorder& recorder) {
                           recorder.Begin("one", "TiltSeries");
                           recorder.Begin("two", "TiltSeries");
                         }});
  recording.Next();
  const auto watch = Begin();
  const auto save = [](Velora::Store::Connection& sql, const char* run, const char* event) {
    sql.RunScript(
        std::string("INSERT INTO events (session_id, execution_id, name, at) SELECT session_id, execution_id, '") +
        event + "', started_at FROM executions WHERE node = '" + run + "'");
  };
  const SqlConnection slow = Open();
  const SqlConnection quick = Open();
  slow->RunScript("BEGIN");
  save(*slow, "one", "Slow");
  save(*quick, "two", "Quick");
  const std::string quickly =
      "Scope 7 running, 1 alive | two running in two, 1 events, Quick | one running in one, 0 events | newest two";
  EXPECT_EQ(SaidOnce(*watch, quickly), quickly);
  slow->RunScript("COMMIT");
  const std::string both =
      "Scope 7 running, 1 alive | two running in two, 1 events, Quick | one running in one, 1 events, Slow | newest "
      "two";
  EXPECT_EQ(SaidOnce(*watch, both), both);
  save(*quick, "one", "Quick");
  const std::string all =
      "Scope 7 running, 1 alive | two running in two, 1 events, Quick | one running in one, 2 events, Quick | newest "
      "two";
  EXPECT_EQ(SaidOnce(*watch, all), all);
}

TEST_F(WatchingServer, TellsInstrumentsWhoseRowsItTakesInApart) {
  ScriptedHost recording(host, {[](Recorder& recorder) { recorder.Begin("one", "TiltSeries"); }});
  recording.Next();
  const auto watch = Begin();
  const SqlConnection sql = Open();
  const std::string at = "'2026-11-26T08:00:00.000000Z'";
  sql->RunScript(
      "INSERT INTO stores VALUES (20000000001, 'other', " + at +
      ", NULL, NULL); "
      "INSERT INTO sessions VALUES (20000000001, 's', 'Veldmar 3', 'pc', " +
      at +
      ", '', '', ''); "
      "INSERT INTO executions VALUES (20000000001, 'g', NULL, 20000000001, 20000000001, NULL, 'far', '', 5, " +
      at +
      "); "
      "INSERT INTO statuses VALUES (20000000001, 20000000001, 20000000001, 4, " +
      at + ")");
  const std::string own = "Scope 7 running, 1 alive | one running in one, 0 events | newest one\n";
  const std::string far = own + "Veldmar 3 unknown, 0 alive | far unknown in far, 0 events | newest far";
  EXPECT_EQ(SaidOnce(*watch, far), far);
  sql->RunScript("INSERT INTO events VALUES (20000000001, 20000000001, 20000000001, NULL, 'Exposed', " + at + ")");
  const std::string event = own + "Veldmar 3 unknown, 0 alive | far unknown in far, 1 events, Exposed | newest far";
  EXPECT_EQ(SaidOnce(*watch, event), event);
  sql->RunScript("INSERT INTO statuses VALUES (20000000002, 20000000001, 20000000001, 14, " + at + ")");
  const std::string over = own + "Veldmar 3 idle, 0 alive | newest far finished, 1 events, Exposed";
  EXPECT_EQ(SaidOnce(*watch, over), over);
}

}  // namespace
