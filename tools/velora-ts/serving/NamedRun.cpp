#include "serving/NamedRun.h"

#include "asking/ComparisonArgument.h"
#include "serving/EachStore.h"
#include "serving/http/Answer.h"
#include "store/comparing/Reference.h"
#include "store/values/RecordedText.h"

#include <exception>
#include <string>
#include <vector>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr std::size_t mostMatches = 5;   // that a refusal names
constexpr std::size_t longestName = 60;  // of a run, in a refusal

std::string Quoted(const std::string& name) {
  return '\'' + name.substr(0, longestName) + (name.size() > longestName ? "...'" : "'");
}

[[noreturn]] void RefuseSeveral(const std::string& name, const std::vector<Run>& runs) {
  std::string words = "several runs match " + Quoted(name) + "; expected the guid of one of them: ";
  for (std::size_t place = 0; place < runs.size() && place < mostMatches; ++place) {
    words += (place > 0 ? ", " : "") + Readable(runs[place].guid.substr(0, longestName));
  }
  throw Http::Refusal(400, words + (runs.size() > mostMatches ? " ..." : ""));
}

std::optional<NamedRun> FindIn(const ServedStore& place, const std::string& name) {
  auto store = std::make_shared<const Reader>(place.settings.database);
  std::vector<Run> runs = RunsNamed(*store, name, mostMatches + 1);
  if (runs.size() > 1) {
    RefuseSeveral(name, runs);
  }
  return runs.empty() ? std::nullopt : std::optional(NamedRun{&place, std::move(store), std::move(runs.front())});
}

const ServedStore& StoreAt(const Served& served, long long number) {
  return served.stores[static_cast<std::size_t>(number - 1)];
}

/// @param before the store to look into first; null for the order of the stores.
NamedRun Find(const Served& served, std::optional<long long> number, const std::string& name,
              const ServedStore* before) {
  std::vector<const ServedStore*> places;
  if (number) {
    places = {&StoreAt(served, *number)};
  } else {
    for (const ServedStore& place : served.stores) {
      places.insert(&place == before ? places.begin() : places.end(), &place);
    }
  }
  std::exception_ptr unread;
  for (const ServedStore* const place : places) {
    try {
      if (std::optional<NamedRun> found = FindIn(*place, name)) {
        return *std::move(found);
      }
    } catch (const Http::Refusal&) {
      throw;
    } catch (const Error&) {  // the run can be in another one
      unread = std::current_exception();
    }
  }
  if (unread) {
    std::rethrow_exception(unread);
  }
  throw Http::Refusal(404,
                      "no run matches " + Quoted(name) + "; expected a guid, its first characters, \"last\" or a node");
}

/// @param number of the store in which it is looked for; that of the run without it.
NamedRun LastGood(const Served& served, const NamedRun& first, std::optional<long long> number) {
  const ServedStore& place = number ? StoreAt(served, *number) : *first.place;
  auto store = &place == first.place ? first.store : std::make_shared<const Reader>(place.settings.database);
  Reference reference = ReferenceOf(*first.store, first.run, *store);
  if (!reference.run) {
    throw Http::Refusal(404, "there is no finished run of activity " + Quoted(Readable(reference.activity)) +
                                 " on instrument " + Quoted(Readable(reference.instrument)) +
                                 " that started before the run; expected a run to compare it with, as with=RUN");
  }
  return {&place, std::move(store), *std::move(reference.run)};
}

}  // namespace

NamedRun RunNamed(const Served& served, Http::Question& question) {
  const std::optional<long long> number = StoreNumber(served, question);
  const std::string name = question.RequiredText("run");
  question.ExpectNoOthers();
  return Find(served, number, name, nullptr);
}

NamedPair PairNamed(const Served& served, Http::Question& question, bool orLastGood) {
  const std::optional<long long> number = StoreNumber(served, question);
  const std::string name = question.RequiredText("run");
  const std::optional<long long> withNumber = StoreNumber(served, question, "with_store");
  const std::string with = question.Text("with");
  const std::vector<std::string> tolerances = question.Texts("tolerance"), ignored = question.Texts("ignore");
  question.ExpectNoOthers();
  NamedPair pair{Find(served, number, name, nullptr), std::nullopt, ComparisonArgument(tolerances, ignored)};
  if (!with.empty()) {
    pair.second = Find(served, withNumber, with, pair.first.place);
  } else if (orLastGood) {
    pair.second = LastGood(served, pair.first, withNumber);
  }
  return pair;
}

}  // namespace Velora::Ts
