#include "serving/Route.h"
#include "serving/Served.h"
#include "store/values/StoredTime.h"
#include "watching/NowAsJson.h"
#include "watching/Watch.h"

namespace Velora::Ts {

namespace {

constexpr std::chrono::seconds firstLook{2};  // for which a request waits that comes before it

Http::Answer WhatIsNow(const Served& served, Http::Question& question) {
  question.ExpectNoOthers();
  Http::Answer answer;
  answer.body = NowAsJson(*served.watch->WaitForAll(firstLook), Store::ToStoredTime(Store::Now()));
  return answer;
}

}  // namespace

extern const Route routeNow = {"/api/now", &WhatIsNow};

}  // namespace Velora::Ts
