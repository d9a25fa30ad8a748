#include "serving/Route.h"
#include "serving/Served.h"
#include "store/values/StoredTime.h"
#include "watching/NowAsJson.h"
#include "watching/Watch.h"

#include <string>

namespace Velora::Ts {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds firstLook{2};
constexpr std::chrono::seconds betweenLooks{1};  // whether the client is still there
constexpr std::chrono::seconds betweenSigns{5};  // of life

std::string Time() { return Store::ToStoredTime(Store::Now()); }

// Each event is the whole state, so a client that comes back needs nothing of what it missed, and one that is slow gets
// the newest state when it has taken the one before.
void SendStates(const Watch& watch, const Http::Send& send) {
  send("retry: 1000\n\n");
  watch.WaitForAll(firstLook);
  long long sent = -1;
  for (Clock::time_point last; !watch.HasEnded();) {
    const std::shared_ptr<const Now> now = watch.WaitAfter(sent, betweenLooks);
    if (now->sequence != sent) {
      sent = now->sequence;
      send("event: now\nid: " + std::to_string(sent) + "\ndata: " + NowAsJson(*now, Time()) + "\n\n");
    } else if (Clock::now() - last >= betweenSigns) {
      send("event: alive\ndata: {\"at\":\"" + Time() + "\"}\n\n");
    } else {
      send("");
      continue;
    }
    last = Clock::now();
  }
}

Http::Answer Follow(const Served& served, Http::Question& question) {
  question.ExpectNoOthers();
  Http::Answer answer;
  answer.type = "text/event-stream";
  answer.headers["X-Accel-Buffering"] = "no";  // a proxy must not wait for more
  answer.write = [&watch = *served.watch](const Http::Send& send) { SendStates(watch, send); };
  return answer;
}

}  // namespace

extern const Route routeLive = {"/api/live", &Follow, Http::Weight::Live};

}  // namespace Velora::Ts
