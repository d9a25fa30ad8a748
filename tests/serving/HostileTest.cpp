#include "serving/Caller.h"
#include "serving/TestServer.h"
#include "support/ScratchFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;
using Velora::Http::Limits;

/// Waits for something that is to come.
template <typename Condition>
bool Comes(const Condition& condition) {
  for (int tries = 0; tries < 3000; ++tries) {
    if (condition()) {
      return true;
    }
    std::this_thread::sleep_for(10ms);
  }
  return false;
}

/// A figure that the system has of this process.
long OfThisProcess(const std::string& name) {
  const std::string status = ContentOf("/proc/self/status");
  return std::stol(status.substr(status.find(name + ":") + name.size() + 1));
}

bool IsAnswered(const TestServer& server) { return BodyOf(AnswerToGet(server.Port(), "/echo?text=a")) == "a"; }

using Callers = std::vector<std::unique_ptr<Caller>>;

Callers Many(int count, const TestServer& server, const std::string& sent) {
  Callers callers;
  for (int number = 0; number < count; ++number) {
    callers.push_back(std::make_unique<Caller>(server.Port()));
    callers.back()->Send(sent);
  }
  return callers;
}

TEST(Hostile, ClientsThatAreSlowToAskAreClosed) {
  Limits limits;
  limits.head = 300ms;
  limits.idle = 600ms;
  const TestServer server(limits);
  const Caller silent(server.Port());
  const Caller slow(server.Port());
  slow.Send("GET /echo?text=");
  while (slow.Send("a")) {  // each byte in time, the whole never
    ASSERT_TRUE(IsAnswered(server));
    std::this_thread::sleep_for(20ms);
  }
  EXPECT_TRUE(silent.IsClosed());
}

TEST(Hostile, ClientsThatReadNothingLoseTheirPlaces) {
  Limits limits;
  limits.reader = 3s;
  const TestServer server(limits);
  const Callers callers = Many(static_cast<int>(limits.heavy), server, Get("/large"));
  ASSERT_TRUE(Comes([&] { return server.largeBegun == 2; }));
  EXPECT_TRUE(IsAnswered(server));
  EXPECT_GT(AnswerToGet(server.Port(), "/large").size(), TestServer::sizeOfLarge);
  EXPECT_EQ(server.largeEnded, 3);
}

TEST(Hostile, ClientsThatReadAByteNowAndThenLoseTheirs) {
  Limits limits;
  limits.reader = 500ms;
  limits.bytesPerSecond = 1024 * 1024 * 1024;
  const TestServer server(limits);
  const Caller caller(server.Port());
  caller.Send(Get("/large"));
  EXPECT_TRUE(Comes([&] {
    caller.ReceiveUntil("x");
    return server.largeEnded == 1;
  }));
}

TEST(Hostile, HeavyAnswersWaitForEachOther) {
  Limits limits;
  limits.waiting = 1;
  const TestServer server(limits);
  Callers callers = Many(2, server, Get("/large"));
  ASSERT_TRUE(Comes([&] { return server.largeBegun == 2; }));
  Callers waiting = Many(2, server, Get("/large", "Connection: close\r\n"));
  EXPECT_TRUE(IsAnswered(server));
  // Whichever comes second is too much.
  ASSERT_TRUE(Comes([&] { return waiting[0]->HasAnswer() || waiting[1]->HasAnswer(); }));
  const std::size_t refused = waiting[0]->HasAnswer() ? 0 : 1;
  EXPECT_EQ(StatusOf(waiting[refused]->ReceiveAll()), 503);
  EXPECT_FALSE(waiting[1 - refused]->HasAnswer());
  callers.clear();
  EXPECT_GT(waiting[1 - refused]->ReceiveAll().size(), TestServer::sizeOfLarge);
}

TEST(Hostile, LiveAnswersAreCounted) {
  Limits limits;
  limits.live = 2;
  const TestServer server(limits);
  Callers callers = Many(2, server, Get("/live"));
  for (const auto& caller : callers) {
    EXPECT_EQ(StatusOf(caller->ReceiveUntil("first")), 200);
  }
  EXPECT_EQ(StatusOf(AnswerToGet(server.Port(), "/live")), 503);
  callers.pop_back();  // it leaves, and says nothing
  EXPECT_TRUE(Comes([&] { return server.liveOnes == 1; }));
  const Caller another(server.Port());
  another.Send(Get("/live"));
  EXPECT_EQ(StatusOf(another.ReceiveUntil("first")), 200);
}

// What sanitizers keep for themselves is not counted.
#ifdef WITH_SANITIZERS
constexpr long mostKilobytes = 4'000'000;
#else
constexpr long mostKilobytes = 48'000;
#endif

TEST(Hostile, AThousandConnectionsLeaveRoomForAReader) {
  const struct {
    const char* what;
    std::string sent;
  } cases[] = {
      {"say nothing", ""},
      {"ask for half", "GET /echo?text=" + std::string(8000, 'a')},
      {"read nothing", Get("/large") + Get("/large")},
      {"send much", Get("/echo?text=" + std::string(7000, 'a'), std::string(8000, 'b') + ": c\r\n")},
      {"ask for much", Get("/live")},
  };
  const long before = OfThisProcess("VmRSS");
  for (const auto& [what, sent] : cases) {
    SCOPED_TRACE(what);
    Limits limits;
    limits.stalled = 200ms;
    const TestServer server(limits);
    const Callers callers = Many(1000, server, sent);
    EXPECT_TRUE(IsAnswered(server));
    EXPECT_LE(OfThisProcess("Threads"), static_cast<long>(limits.connections) + 10);
    EXPECT_LE(OfThisProcess("VmRSS") - before, mostKilobytes);
  }
}

TEST(Hostile, NothingHoldsUpTheEnd) {
  TestServer server;
  Callers callers = Many(5, server, "");
  for (const char* sent : {"GET /ech", "POST"}) {
    callers.push_back(std::make_unique<Caller>(server.Port()));
    callers.back()->Send(sent);
  }
  for (const char* path : {"/live", "/live", "/large", "/large", "/large"}) {
    callers.push_back(std::make_unique<Caller>(server.Port()));
    callers.back()->Send(Get(path));
  }
  ASSERT_TRUE(Comes([&] { return server.liveOnes == 2 && server.largeBegun == 2; }));
  server.End();
  EXPECT_EQ(server.liveOnes, 0);
  for (const auto& caller : callers) {
    EXPECT_TRUE(caller->IsClosed());
  }
  EXPECT_FALSE(Caller(server.Port()).IsConnected());
}

}  // namespace
