#include "page/writer/Frame.h"
#include "serving/ReportedRun.h"
#include "serving/Route.h"

#include <algorithm>
#include <cctype>

namespace Velora::Ts {

using namespace Store;

namespace {

/// The name that `report` gives the file, in characters that a header can have.
std::string FileOf(const Run& run) {
  std::string letters = run.guid.substr(0, shortGuid);
  std::replace_if(
      letters.begin(), letters.end(), [](unsigned char letter) { return std::isalnum(letter) == 0; }, '_');
  return "run-" + letters + ".html";
}

Http::Answer AnswerReport(const Served& served, Http::Question& question) {
  const Page::Frame frame = Page::RunFrame();  // first, because a build may lack it
  const auto reported = std::make_shared<const ReportedRun>(PairNamed(served, question, false));
  Http::Answer answer;
  answer.type = "text/html";
  answer.headers["Content-Disposition"] = "attachment; filename=\"" + FileOf(reported->Run()) + '"';
  answer.write = [frame, reported](const Http::Send& send) {
    reported->Write([&](const Page::RunPage& page) { page.Write(frame, send, [] {}); });
  };
  return answer;
}

}  // namespace

extern const Route routeReportFile = {"/report", &AnswerReport, Http::Weight::Heavy};

}  // namespace Velora::Ts
