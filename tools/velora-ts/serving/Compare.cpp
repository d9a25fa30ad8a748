#include "comparing/Differences.h"
#include "serving/NamedRun.h"
#include "serving/Route.h"

#include <utility>

namespace Velora::Ts {

using namespace Store;

namespace {

struct ComparedPair {
  explicit ComparedPair(NamedPair named)
      : pair(std::move(named)), runs(pair.first.Side(), pair.second->Side(), pair.rules, false) {}

  const NamedPair pair;
  const ComparedRuns runs;
};

Http::Answer AnswerCompare(const Served& served, Http::Question& question) {
  const auto compared = std::make_shared<const ComparedPair>(PairNamed(served, question, true));
  Http::Answer answer;
  answer.write = [compared](const Http::Send& send) {
    const NamedRun &first = compared->pair.first, &second = *compared->pair.second;
    Summary summary;
    WriteDifferencesAsJson(compared->runs.Found(), summary, false, send,
                           "\"store\":" + std::to_string(first.place->number) +
                               ",\"against_store\":" + std::to_string(second.place->number) + ',');
    first.store->ExpectUntouched();
    second.store->ExpectUntouched();
  };
  return answer;
}

}  // namespace

extern const Route routeCompare = {"/api/compare", &AnswerCompare, Http::Weight::Heavy};

}  // namespace Velora::Ts
