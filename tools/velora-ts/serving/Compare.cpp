#include "comparing/Differences.h"
#include "serving/NamedRun.h"
#include "serving/Route.h"

#include <cstddef>
#include <memory>
#include <string>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr long long highestFirst = 100;
constexpr std::size_t longestText = 100'000;  // characters, of a whole comparison

/// With `first`, an answer is short whatever was recorded. No text is long in any.
DifferencesLimit LimitIn(Http::Question& question) {
  const auto first = static_cast<std::size_t>(question.Whole("first", 1, highestFirst).value_or(0));
  return {.first = first, .groups = 100, .lines = 200, .longest = first > 0 ? 500 : longestText, .deepest = 20};
}

struct ComparedPair {
  ComparedPair(const Served& served, Http::Question& question)
      : limit(LimitIn(question)),
        pair(PairNamed(served, question, true)),
        runs(pair.first.Side(), pair.second->Side(), pair.rules, false) {}

  const DifferencesLimit limit;
  const NamedPair pair;
  const ComparedRuns runs;
};

Http::Answer AnswerCompare(const Served& served, Http::Question& question) {
  const auto compared = std::make_shared<const ComparedPair>(served, question);
  Http::Answer answer;
  answer.write = [compared](const Http::Send& send) {
    const NamedRun &first = compared->pair.first, &second = *compared->pair.second;
    Summary summary;
    WriteDifferencesAsJson(compared->runs.Found(), summary, false, send,
                           "\"store\":" + std::to_string(first.place->number) +
                               ",\"against_store\":" + std::to_string(second.place->number) + ',',
                           compared->limit);
    first.store->ExpectUntouched();
    second.store->ExpectUntouched();
  };
  return answer;
}

}  // namespace

extern const Route routeCompare = {"/api/compare", &AnswerCompare, Http::Weight::Heavy};

}  // namespace Velora::Ts
