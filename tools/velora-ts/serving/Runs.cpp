#include "asking/ListedRuns.h"
#include "asking/TimeArgument.h"
#include "asking/WhereArgument.h"
#include "serving/EachStore.h"
#include "serving/Route.h"
#include "serving/ShortenedRuns.h"
#include "store/values/StoredText.h"

#include <charconv>
#include <limits>
#include <list>
#include <utility>

namespace Velora::Ts {

using namespace Store;

namespace {

using Clock = ListedRuns::Clock;

constexpr long long usualLimit = 100, highestLimit = 500;
constexpr std::size_t longest = 500;  // characters of a text in the list
constexpr long long mostNotes = 10;   // of a run in the list
constexpr std::chrono::milliseconds patience{700};

/// Where a page of the list ends: behind a run of a store.
struct Place {
  long long store = 0;
  long long key = 0;
};

std::string AsText(const Place& place) { return std::to_string(place.store) + '-' + std::to_string(place.key); }

Place PlaceIn(const std::string& text, std::size_t stores) {
  Place place;
  const char* const end = text.data() + text.size();
  const auto [separator, error] = std::from_chars(text.data(), end, place.store);
  if (error == std::errc() && separator != end && *separator == '-' && place.store >= 1 &&
      std::cmp_less_equal(place.store, stores)) {
    const auto [last, wrong] = std::from_chars(separator + 1, end, place.key);
    if (wrong == std::errc() && last == end) {
      return place;
    }
  }
  throw Http::Refusal(400, "parameter 'after' names no place in the list; expected what `next` was in an answer");
}

/// The runs of one store that are still to be listed, and how they are written.
struct Source {
  Source(const ServedStore& place, const Reader& store, const RunFilter& filter, const std::vector<Condition>& where)
      : number(place.number), runs(store, filter, where), written(store, place.number, longest, mostNotes) {}

  const int number;
  ListedRuns runs;
  ShortenedRuns written;
  bool stands = false;  // on a run, or behind the last one for which there was time
};

/// All stores, merged.
class MergedRuns {
 public:
  MergedRuns(const Served& served, std::optional<long long> number, RunFilter filter, std::vector<Condition> where,
             std::optional<Place> after)
      : where(std::move(where)), filter(std::move(filter)), end(Clock::now() + patience) {
    const std::string startedAt = after ? StartedAt(served, *after) : "";
    errors = EachStore(served, number, [&](const ServedStore& place, const auto& store) {
      if (after) {
        this->filter.after = RunPlace{startedAt, KeyFor(place.number, *after)};
      }
      readers.push_back(store);
      Advance(sources.emplace_back(place, *store, this->filter, this->where));
    });
  }

  /// The page, as JSON.
  std::string Page(long long limit) {
    std::string json = "{\"runs\":";
    const char* separator = "[\n";
    std::optional<Place> last;
    Source* source = Newest();
    for (; source != nullptr && !source->runs.IsInterrupted() && limit > 0; source = Newest(), --limit) {
      last = Place{source->number, source->runs.Place().key};
      json += separator + ('{' + source->written.Members(source->runs.Run()) + '}');
      separator = ",\n";
      Advance(*source);
    }
    if (source != nullptr && source->runs.IsInterrupted()) {
      last = Place{source->number, source->runs.Place().key};
    }
    json +=
        (*separator == '[' ? "[]" : "]") + (",\n\"next\":" + (source == nullptr ? "null" : '"' + AsText(*last) + '"'));
    for (const auto& reader : readers) {
      reader->ExpectUntouched();
    }
    return json + ",\"errors\":" + errors + "}\n";
  }

 private:
  static std::string StartedAt(const Served& served, const Place& after) {
    const Reader store(served.stores[static_cast<std::size_t>(after.store - 1)].settings.database);
    Rows rows(store, "SELECT started_at FROM executions WHERE execution_id = ?1");
    if (!rows.Ask(after.key).Next()) {
      throw Http::Refusal(400, "parameter 'after' names a run that is no longer there; expected the list from its top");
    }
    return std::string(rows.Text(0));
  }

  // Of runs that started at the same time, those of the first store come first.
  static long long KeyFor(long long store, const Place& after) {
    return store == after.store ? after.key : store < after.store ? 0 : std::numeric_limits<long long>::max();
  }

  void Advance(Source& source) {
    source.runs.EndAt(end);
    source.stands = source.runs.Next() || source.runs.IsInterrupted();
  }

  /// The source that stands on the newest run; of equal times, the first one.
  Source* Newest() {
    Source* newest = nullptr;
    for (Source& source : sources) {
      if (source.stands && (newest == nullptr || source.runs.Place().startedAt > newest->runs.Place().startedAt)) {
        newest = &source;
      }
    }
    return newest;
  }

  const std::vector<Condition> where;
  RunFilter filter;
  const Clock::time_point end;
  std::vector<std::shared_ptr<const Reader>> readers;
  std::list<Source> sources;
  std::string errors;
};

std::string Time(const std::string& text) { return text.empty() ? "" : TimeArgument(text); }

Http::Answer AnswerRuns(const Served& served, Http::Question& question) {
  const std::optional<long long> number = StoreNumber(served, question);
  RunFilter filter{.since = Time(question.Text("since")),
                   .until = Time(question.Text("until")),
                   .instrument = FromStoredText(question.Text("instrument")),
                   .activity = FromStoredText(question.Text("activity")),
                   .node = FromStoredText(question.Text("node")),
                   .text = question.Text("text"),
                   .state = question.OneOf("state", RunFilter::states),
                   .after = {},
                   .limit = 0,
                   .longest = longest + 1};
  const std::vector<Condition> where = WhereArgument(question.Texts("where"));
  const long long limit = question.Whole("limit", 1, highestLimit).value_or(usualLimit);
  const std::string after = question.Text("after");
  question.ExpectNoOthers();
  filter.limit = limit + 1;  // one more shows that there are more
  Http::Answer answer;
  answer.body = MergedRuns(served, number, filter, where,
                           after.empty() ? std::nullopt : std::optional(PlaceIn(after, served.stores.size())))
                    .Page(limit);
  return answer;
}

}  // namespace

extern const Route routeRuns = {"/api/runs", &AnswerRuns};

}  // namespace Velora::Ts
