#include "output/Words.h"
#include "serving/NamedRun.h"
#include "serving/Route.h"
#include "serving/ShortenedRuns.h"
#include "serving/ShortenedStops.h"
#include "store/reading/Rows.h"

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr std::size_t longest = 100'000;  // characters of a text
constexpr long long mostNotes = 1000;

ListedRun Described(const Reader& store, const Run& run) {
  Rows rows = QueryExecutions(store, "WHERE e.execution_id = ?1", {}, longest + 1);
  rows.Ask(run.root).Next();
  ListedRun described{ExecutionAt(rows), false, Hosts(store).Of(run), ""};
  described.unfinished = described.known.state != RunState::Finished;
  described.lastRecorded = described.unfinished ? LastRecorded(store, run) : described.root.statusAt;
  return described;
}

Http::Answer AnswerRun(const Served& served, Http::Question& question) {
  const NamedRun named = RunNamed(served, question);
  const Reader& store = *named.store;
  ShortenedStops shortened(store);
  const std::string stops = shortened.AsJson(named.run);
  Http::Answer answer;
  answer.body = '{' +
                ShortenedRuns(store, named.place->number, longest, mostNotes)
                    .Members(Described(store, named.run), shortened.IsCut()) +
                ",\"stops\":" + stops + "}\n";
  store.ExpectUntouched();
  return answer;
}

}  // namespace

extern const Route routeRunOf = {"/api/run", &AnswerRun};

}  // namespace Velora::Ts
