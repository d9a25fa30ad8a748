#include "asking/Trends.h"

#include "asking/TimeArgument.h"
#include "output/Units.h"
#include "serving/Route.h"
#include "serving/Served.h"
#include "store/values/Json.h"
#include "store/values/StoredText.h"

namespace Velora::Ts {

using namespace Store;

namespace {

/// The stored form of a text that may be in it already, as answers have it.
std::string Stored(const std::string& text) { return ToStoredText(FromStoredText(text)); }

TrendQuestion QuestionOf(Http::Question& given) {
  TrendQuestion question;
  question.parameter = Stored(given.RequiredText("parameter"));
  if (const std::string since = given.Text("since"); !since.empty()) {
    question.window.from = TimeArgument(since);
  }
  if (const std::string until = given.Text("until"); !until.empty()) {
    question.window.before = TimeArgument(until);
  }
  question.window.instrument = Stored(given.Text("instrument"));
  question.window.activity = Stored(given.Text("activity"));
  question.by = given.OneOf("by", {"instrument", "activity"});
  return question;
}

Http::Answer AnswerTrends(const Served& served, Http::Question& given) {
  const TrendQuestion question = QuestionOf(given);
  const auto one = given.Whole("store", 1, static_cast<long long>(served.stores.size()));
  given.ExpectNoOthers();
  std::vector<TrendStore> stores;
  std::string unit;
  for (const ServedStore& store : served.stores) {
    if (!one || *one == store.number) {
      stores.push_back({store.number, store.settings.database});
      unit = unit.empty() ? Units(store.settings.units).Of(question.parameter) : unit;
    }
  }
  Http::Answer answer;
  answer.body = served.trends->Answer(stores, question) + ",\"unit\":";
  AppendText(answer.body, unit);
  answer.body += "}\n";
  return answer;
}

}  // namespace

extern const Route routeTrends = {"/api/trends", &AnswerTrends, Http::Weight::Heavy};

}  // namespace Velora::Ts
