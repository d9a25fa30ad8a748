#include "serving/ReportedRun.h"
#include "serving/Route.h"

namespace Velora::Ts {

namespace {

Http::Answer AnswerRunData(const Served& served, Http::Question& question) {
  const auto reported = std::make_shared<const ReportedRun>(PairNamed(served, question, false));
  Http::Answer answer;
  answer.write = [reported](const Http::Send& send) {
    reported->Write([&](const Page::RunPage& page) { page.WriteData(send, [] {}); });
  };
  return answer;
}

}  // namespace

extern const Route routeRunData = {"/api/run/data", &AnswerRunData, Http::Weight::Heavy};

}  // namespace Velora::Ts
