// What is said of a store that is watched while hosts record, end and are killed, on either database.

#include "Watching.h"
#include "serving/Route.h"
#include "serving/Served.h"
#include "store/reading/Listener.h"
#include "store/values/StoredTime.h"
#include "support/HostileRun.h"
#include "support/Query.h"
#include "support/ScarceMemory.h"
#include "watching/NowAsJson.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <set>
#include <thread>

namespace Velora::Ts {
extern const Route routeLive;
}

namespace {

using namespace Velora::Ts;

using Recorded = std::function<void(Recorder&)>;

Recorded Begins(const std::string& node, const std::string& activity, const std::string& parent = "") {
  return [=](Recorder& host) { host.Begin(node, activity, parent); };
}
Recorded Ends(const std::string& node) {
  return [=](Recorder& host) { host.End(node); };
}
Recorded Saves(const std::string& node, const std::string& name, const std::string& parameter,
               const std::string& value) {
  return [=](Recorder& host) { host.Event(node, name, parameter, value); };
}
Recorded Nothing() {
  return [](Recorder& /*host*/) {};
}

TEST_F(Watching, FollowsWhatHostsRecordUntilTheyAreKilled) {
  struct Row {
    Recorded recorded;
    const char* said;
  };
  const std::vector<Row> rows = {
      {Nothing(), "Scope 7 idle, 1 alive"},
      {Begins("one", "TiltSeries"), "Scope 7 running, 1 alive | one running in one, 0 events | newest one"},
      {Begins("a", "Expose", "one"), "Scope 7 running, 1 alive | one running in one > a #1, 0 events | newest one"},
      {Saves("a", "Exposed", "Dose", "3.10"),
       "Scope 7 running, 1 alive | one running in one > a #1, 1 events, Exposed Dose=\"3.10\" | newest one\n"
       "Scope 7 Dose=3.100000"},
      {Ends("a"),
       "Scope 7 running, 1 alive | one running in one, 1 events, Exposed Dose=\"3.10\" | newest one\n"
       "Scope 7 Dose=3.100000"},
      {Begins("f", "Focus", "one"),
       "Scope 7 running, 1 alive | one running in one > f #1, 1 events, Exposed Dose=\"3.10\" | newest one\n"
       "Scope 7 Dose=3.100000"},
      {Ends("f"),
       "Scope 7 running, 1 alive | one running in one, 1 events, Exposed Dose=\"3.10\" | newest one\n"
       "Scope 7 Dose=3.100000"},
      {Begins("b", "Expose", "one"),
       "Scope 7 running, 1 alive | one running in one > b #2, 1 events, Exposed Dose=\"3.10\" | newest one\n"
       "Scope 7 Dose=3.100000"},
      {Saves("", "Pumped", "Dose", "off"),
       "Scope 7 running, 1 alive | one running in one > b #2, 1 events, Exposed Dose=\"3.10\" | newest one\n"
       "Scope 7 Dose=3.100000"},
      {Ends("b"),
       "Scope 7 running, 1 alive | one running in one, 1 events, Exposed Dose=\"3.10\" | newest one\n"
       "Scope 7 Dose=3.100000"},
      {Ends("one"),
       "Scope 7 idle, 1 alive | newest one finished, 1 events, Exposed Dose=\"3.10\"\nScope 7 Dose=3.100000"},
      {Begins("two", "TiltSeries"),
       "Scope 7 running, 1 alive | two running in two, 0 events | newest two\nScope 7 Dose=3.100000"},
      {Saves("two", "Exposed", "Dose", "4"),
       "Scope 7 running, 1 alive | two running in two, 1 events, Exposed Dose=\"4\" | newest two\n"
       "Scope 7 Dose=4.000000"},
  };
  std::vector<Recorded> steps;
  std::transform(rows.begin(), rows.end(), std::back_inserter(steps), [](const Row& row) { return row.recorded; });
  ScriptedHost first(host, steps);
  ScriptedHost second(host, {Begins("three", "TiltSeries"), Ends("three")});
  const auto watch = Begin({"Dose"});
  EXPECT_EQ(SaidOnce(*watch, "error"), "error") << "there is no store";
  for (const Row& row : rows) {
    first.Next();
    EXPECT_EQ(SaidOnce(*watch, row.said), row.said);
    EXPECT_EQ(SaidOnce(*Begin({"Dose"}), row.said), row.said) << "begun anew";
  }
  first.Kill();
  const std::string two = " | two stopped in two, 1 events, Exposed Dose=\"4\"";
  const std::string dose = "\nScope 7 Dose=4.000000";
  EXPECT_EQ(SaidOnce(*watch, "Scope 7 stopped, 0 alive" + two + " | newest two" + dose),
            "Scope 7 stopped, 0 alive" + two + " | newest two" + dose);
  second.Next();
  const std::string three =
      "Scope 7 running, 1 alive | three running in three, 0 events" + two + " | newest three" + dose;
  EXPECT_EQ(SaidOnce(*watch, three), three);
  second.Next();
  const std::string over = "Scope 7 idle, 1 alive" + two + " | newest three finished, 0 events" + dose;
  EXPECT_EQ(SaidOnce(*watch, over), over);
  EXPECT_EQ(watch->Newest()->stores.front()->stopped, 1);
}

class WatchingFile : public Watching {};

// A log that was left would be read again at each opening.
TEST_F(WatchingFile, DoesNotOpenWhatNobodyWrites) {
  ScriptedHost first(host, {Begins("one", "TiltSeries")});
  ScriptedHost second(host, {Begins("two", "TiltSeries")});
  first.Next();
  std::atomic<int> questions = 0;
  Velora::Store::questionListener = [&](const std::string& /*question*/) { ++questions; };
  auto watch = Begin();
  const auto askedAfterAWhile = [&] {
    const int before = questions;
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    return questions - before;
  };
  const std::string one = "one stopped in one, 0 events";
  EXPECT_NE(SaidOnce(*watch, "Scope 7 running, 1 alive | one running in one, 0 events | newest one"), "");
  EXPECT_GT(askedAfterAWhile(), 0) << "a host lives";
  first.Kill();
  EXPECT_EQ(SaidOnce(*watch, "Scope 7 stopped, 0 alive | " + one + " | newest one"),
            "Scope 7 stopped, 0 alive | " + one + " | newest one");
  const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (askedAfterAWhile() > 0 && std::chrono::steady_clock::now() < end) {
  }
  EXPECT_LT(std::chrono::steady_clock::now(), end);
  second.Next();
  const std::string two = "Scope 7 running, 1 alive | two running in two, 0 events | " + one + " | newest two";
  EXPECT_EQ(SaidOnce(*watch, two), two);
  watch = nullptr;
  Velora::Store::questionListener = nullptr;
}

// There can be many thousands that nobody finishes.
TEST_F(Watching, ReadsOnceWhatDidNotFinish) {
  ScriptedHost recording(host, {Begins("one", "TiltSeries"), Begins("a", "Expose", "one"), Ends("a"), Ends("one")});
  recording.Next();
  std::atomic<int> read = 0;
  Velora::Store::questionListener = [&](const std::string& question) {
    read += question.find("s.session_id FROM running") != std::string::npos ? 1 : 0;
  };
  auto watch = Begin();
  for (const char* const said :
       {"one running in one, 0 events | newest one", "one running in one > a #1, 0 events | newest one",
        "one running in one, 0 events | newest one", "newest one finished, 0 events"}) {
    const std::string whole = std::string("Scope 7 ") + (*said == 'n' ? "idle" : "running") + ", 1 alive | " + said;
    EXPECT_EQ(SaidOnce(*watch, whole), whole);
    if (*said != 'n') {
      recording.Next();
    }
  }
  watch = nullptr;
  Velora::Store::questionListener = nullptr;
  EXPECT_EQ(read, 1);
}

// A run of several hosts is running as long as one of them lives that has something to finish in it.
TEST_F(Watching, TellsHostsOfOneRunApart) {
  ScriptedHost first(host, {Begins("one", "TiltSeries")});
  ScriptedHost second(host, {[this](Recorder& recorder) {
                        recorder.Know("one", Query(*store.Open(), "SELECT guid FROM executions").substr(0, 36));
                        recorder.Begin("below", "Expose", "one");
                      }});
  first.Next();
  second.Next();
  const auto watch = Begin();
  const std::pair<std::function<void()>, const char*> rows[] = {
      {[] {}, "Scope 7 running, 2 alive | one running in one > below #1, 0 events | newest one"},
      {[&] { first.Kill(); }, "Scope 7 running, 1 alive | one running in one > below #1, 0 events | newest one"},
      {[&] { second.Kill(); }, "Scope 7 stopped, 0 alive | one stopped in one > below #1, 0 events | newest one"},
  };
  for (const auto& [act, said] : rows) {
    act();
    EXPECT_EQ(SaidOnce(*watch, said), said);
  }
}

TEST_F(Watching, TellsTheTruthAgainAfterTheStoreWasReplaced) {
  ScriptedHost first(host, {Begins("one", "TiltSeries")});
  ScriptedHost second(host, {Begins("other", "TiltSeries")});
  first.Next();
  const auto watch = Begin();
  const char* const one = "Scope 7 running, 1 alive | one running in one, 0 events | newest one";
  EXPECT_EQ(SaidOnce(*watch, one), one);
  if (TestStore::OnServer()) {
    first.Kill();
    store.Open()->RunScript("DROP SCHEMA public CASCADE; CREATE SCHEMA public");
  } else {
    create_directory(folder / "away");
    for (const char* const name : {"ts.db", "ts.db-wal", "ts.db-shm", "ts.db-hosts"}) {
      std::filesystem::rename(host / name, folder / "away" / name);
    }
  }
  const auto isError = [](const std::string& said) { return said.starts_with("error"); };
  EXPECT_TRUE(isError(SaidOnce(*watch, isError))) << watch->Newest()->stores.front()->error;
  second.Next();
  const char* const other = "Scope 7 running, 1 alive | other running in other, 0 events | newest other";
  EXPECT_EQ(SaidOnce(*watch, other), other);
}

// Silence counts from when it was seen, also after the store could not be read, and from what is recorded after it.
TEST_F(Watching, TakesATimeAheadForWhenItWasSeen) {
  ScriptedHost recording(host, {Begins("one", "TiltSeries"), Saves("one", "Exposed", "Dose", "1"), Ends("one")});
  recording.Next();
  const auto watch = Begin();
  const std::string running = "Scope 7 running, 1 alive | one running in one, ";
  EXPECT_EQ(SaidOnce(*watch, running + "0 events | newest one"), running + "0 events | newest one");
  const auto recordedAt = [&] {
    const InstrumentNow& instrument = watch->Newest()->stores.front()->instruments.front();
    return instrument.lastRecordedAt + ' ' + instrument.newest->lastRecordedAt;
  };
  const std::string before = recordedAt();
  store.Open()->RunScript(
      "INSERT INTO events (session_id, execution_id, name, at) SELECT session_id, execution_id, 'Ahead', "
      "'2099-01-01T00:00:00.000000Z' FROM executions");
  const std::string ahead = running + "1 events, Ahead | newest one";
  EXPECT_EQ(SaidOnce(*watch, ahead), ahead);
  const std::string seen = recordedAt();
  EXPECT_LT(before, seen);
  EXPECT_LE(seen, Velora::Store::ToStoredTime(Velora::Store::Now()));
  const auto isError = [](const std::string& said) { return said.starts_with("error"); };
  store.Open()->RunScript("ALTER TABLE ts_schema RENAME TO away");
  EXPECT_TRUE(isError(SaidOnce(*watch, isError)));
  store.Open()->RunScript("ALTER TABLE away RENAME TO ts_schema");
  EXPECT_EQ(SaidOnce(*watch, ahead), ahead);
  EXPECT_EQ(recordedAt(), seen);
  recording.Next();
  const std::string later = running + "2 events, Exposed Dose=\"1\" | newest one";
  EXPECT_EQ(SaidOnce(*watch, later), later);
  EXPECT_LT(seen, recordedAt());
}

TEST_F(WatchingFile, TellsTheTruthAgainAfterAnOlderCopyWasRestored) {
  ScriptedHost first(host, {Begins("one", "TiltSeries")});
  ScriptedHost second(host, {Begins("two", "TiltSeries")});
  first.Next();
  first.Kill();
  const auto copy = [&](const std::filesystem::path& from, const std::filesystem::path& to) {
    for (const char* const name : {"ts.db", "ts.db-wal", "ts.db-hosts"}) {
      copy_file(from / name, to / name, std::filesystem::copy_options::overwrite_existing);
    }
  };
  create_directory(folder / "away");
  copy(host, folder / "away");
  const auto watch = Begin();
  const std::string one = "one stopped in one, 0 events";
  EXPECT_EQ(SaidOnce(*watch, "Scope 7 stopped, 0 alive | " + one + " | newest one"),
            "Scope 7 stopped, 0 alive | " + one + " | newest one");
  second.Next();
  second.Kill();
  const std::string both = "Scope 7 stopped, 0 alive | two stopped in two, 0 events | " + one + " | newest two";
  EXPECT_EQ(SaidOnce(*watch, both), both);
  std::filesystem::remove(host / "ts.db-shm");
  copy(folder / "away", host);
  const auto isOlder = [](const std::string& said) { return said.ends_with(" in one, 0 events | newest one"); };
  EXPECT_TRUE(isOlder(SaidOnce(*watch, isOlder))) << "its locks can be elsewhere, so its state is not compared";
}

TEST_F(WatchingFile, GoesOnWhenMemoryLacks) {
  ScriptedHost recording(host, {Begins("one", "TiltSeries"), Ends("one")});
  recording.Next();
  std::atomic<int> some = 0;  // it fails at another place each time
  Velora::Store::questionListener = [&some](const std::string& question) {
    if (some < 600 && question.find("sqlite_master") != std::string::npos) {
      ScarceMemory::RefuseAfter(some += 25, 30);
    }
  };
  auto watch = Begin();
  while (some < 600) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  recording.Next();
  const std::string over = "Scope 7 idle, 1 alive | newest one finished, 0 events";
  EXPECT_EQ(SaidOnce(*watch, over), over);
  watch = nullptr;
  Velora::Store::questionListener = nullptr;
}

TEST_F(Watching, GivesLittleOfWhatIsHostileOrMuch) {
  Recorder recorder(host);
  const std::string much = "<script>alert(1)</script>\u202e" + std::string(1'000'000, 'x');
  recorder.Begin(much, "TiltSeries");
  recorder.Event(much, much, much, much);
  RecordHostileRun(much);
  for (int run = 0; run < 12; ++run) {
    recorder.Begin("run " + std::to_string(run), "TiltSeries");
  }
  const auto watch = Begin({much});
  SaidOnce(*watch, [](const std::string& said) { return said.find("5 more") != std::string::npos; });
  const std::shared_ptr<const Now> now = watch->Newest();
  const StoreNow& said = *now->stores.front();
  ASSERT_EQ(said.instruments.size(), 1U) << said.error;
  EXPECT_EQ(said.instruments.front().runs.size(), mostRunsNow);
  EXPECT_EQ(said.instruments.front().moreRuns, 5);
  EXPECT_EQ(said.running, 13);
  const std::string json = NowAsJson(*now, "2026-11-26T08:00:00.000000Z");
  EXPECT_LT(json.size(), 20'000U);
  EXPECT_EQ(json.find('\n'), std::string::npos);
  EXPECT_EQ(Velora::Store::ConnectToMemory()->Find<int>("SELECT json_valid(?1)", json), 1) << json;
}

/// Takes what is sent to a client of /api/live.
class LiveClient {
 public:
  explicit LiveClient(const Served& served) : answer(Ask(served)), thread([this] { Read(); }) {}
  LiveClient(const LiveClient&) = delete;
  LiveClient& operator=(const LiveClient&) = delete;
  ~LiveClient() { thread.join(); }

  void Stall() { stalls.lock(); }
  void GoOn() { stalls.unlock(); }
  /// The events that have come, once the last of them has a text in it, or after a minute.
  std::vector<std::string> EventsUntil(const std::string& text) {
    std::unique_lock lock(mutex);
    came.wait_for(lock, std::chrono::minutes(1),
                  [&] { return !events.empty() && events.back().find(text) != std::string::npos; });
    return events;
  }

 private:
  static Velora::Http::Answer Ask(const Served& served) {
    Velora::Http::Question question({});
    return routeLive.answer(served, question);
  }
  void Read() {
    answer.write([this](std::string_view piece) {
      const std::lock_guard hold(stalls);
      const std::lock_guard lock(mutex);
      if (piece.starts_with("event: now\n")) {
        events.emplace_back(piece);
        came.notify_all();
      }
    });
  }

  const Velora::Http::Answer answer;
  std::mutex stalls, mutex;
  std::condition_variable came;
  std::vector<std::string> events;
  std::thread thread;
};

// Whoever has left is only noticed by sending to him, or by looking after him.
TEST_F(Watching, GivesSignsOfLifeAndLooksForTheClient) {
  const auto watch = Begin();
  Served served;
  served.watch = watch.get();
  Velora::Http::Question question({});
  int looks = 0;
  const auto send = [&](std::string_view piece) {
    looks += piece.empty() ? 1 : 0;
    if (piece.starts_with("event: alive\ndata: {\"at\":\"20")) {
      throw std::runtime_error("the client has left");
    }
  };
  EXPECT_THROW(routeLive.answer(served, question).write(send), std::runtime_error);
  EXPECT_GT(looks, 0);
}

TEST_F(Watching, AsksTheStoreOnceForAllWhoFollow) {
  ScriptedHost recording(host, {Begins("one", "TiltSeries"), Saves("one", "First", "Dose", "1"),
                                Saves("one", "Second", "Dose", "2"), Saves("one", "Last", "Dose", "3")});
  recording.Next();
  std::mutex mutex;
  std::set<std::thread::id> asking;
  Velora::Store::questionListener = [&](const std::string& /*question*/) {
    const std::lock_guard lock(mutex);
    asking.insert(std::this_thread::get_id());
  };
  auto watch = Begin({"Dose"});
  Served served;
  served.watch = watch.get();
  {
    std::vector<std::unique_ptr<LiveClient>> clients(20);
    std::generate(clients.begin(), clients.end(), [&] { return std::make_unique<LiveClient>(served); });
    LiveClient& slow = *clients.front();
    slow.EventsUntil("\"node\":\"one\"");
    slow.Stall();
    for (const char* const event : {"First", "Second", "Last"}) {
      recording.Next();
      for (std::size_t at = 1; at < clients.size(); ++at) {
        clients[at]->EventsUntil(event);
      }
    }
    slow.GoOn();
    EXPECT_NE(slow.EventsUntil("Last").back().find("Last"), std::string::npos);
    watch->End();
    EXPECT_LT(slow.EventsUntil("Last").size(), clients.back()->EventsUntil("Last").size()) << "it skipped none";
    for (const auto& client : clients) {
      long long before = -1;
      for (const std::string& event : client->EventsUntil("Last")) {
        const long long id = std::stoll(event.substr(std::string("event: now\nid: ").size()));
        EXPECT_GT(id, before);
        before = id;
        EXPECT_NE(event.find("\ndata: {\"sequence\":" + std::to_string(id) + ","), std::string::npos) << event;
        EXPECT_EQ(std::count(event.begin(), event.end(), '\n'), 4) << event;
      }
    }
  }
  watch = nullptr;
  Velora::Store::questionListener = nullptr;
  EXPECT_EQ(asking.size(), 1U) << "threads that asked";
}

}  // namespace
