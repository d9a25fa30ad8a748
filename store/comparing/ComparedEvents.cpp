#include "store/comparing/ComparedEvents.h"

#include "store/comparing/EventPairs.h"

#include <algorithm>
#include <map>

namespace Velora::Store {

namespace {

using Kind = Compared::Kind;
using Counts = std::map<std::string, std::size_t, std::less<>>;

// Executions are read with those between them. Where more are between two of them, or they go back, the store is asked
// again.
constexpr std::size_t farthest = 100;

std::size_t Count(Counts& counts, const std::string& name) { return ++counts[name]; }

class Comparer {
 public:
  Comparer(const Comparison& comparison, const ComparisonRules& rules, EventStream& firstEvents,
           EventStream& secondEvents, const Comparison::Visitor& visit)
      : first(comparison.First()),
        second(comparison.Second()),
        matching(comparison.Matched()),
        rules(rules),
        firstEvents(firstEvents),
        secondEvents(secondEvents),
        visit(visit) {}

  void Run() {
    for (std::size_t from = Next(0); from < first.Size();) {
      from = CompareBlock(from);
    }
  }

 private:
  // The next execution of the first run that is in both.
  std::size_t Next(std::size_t place) const {
    for (; place < first.Size() && matching.ofFirst[place] == Matching::none; ++place) {
    }
    return place;
  }

  // Compares executions that can be read in one go. @return the first that cannot.
  std::size_t CompareBlock(std::size_t from) {
    std::size_t last = from, after = Next(from + 1);
    for (; after < first.Size() && IsNear(last, after) && IsNear(matching.ofFirst[last], matching.ofFirst[after]);
         after = Next(after + 1)) {
      last = after;
    }
    firstEvents.Ask(first.At(from).key, first.At(last).key);
    secondEvents.Ask(second.At(matching.ofFirst[from]).key, second.At(matching.ofFirst[last]).key);
    for (std::size_t place = from; place < after; place = Next(place + 1)) {
      Compare(place, matching.ofFirst[place]);
    }
    return after;
  }

  static bool IsNear(std::size_t one, std::size_t next) { return next > one && next - one <= farthest; }

  void Compare(std::size_t one, std::size_t other) {
    compared.first = one;
    compared.second = other;
    ofFirst.clear();
    ofSecond.clear();
    firstEvents.GoTo(first.At(one).key);
    secondEvents.GoTo(second.At(other).key);
    PairEvents(firstEvents, secondEvents, rules,
               [this, one, other](const ComparedEvent* event, const ComparedEvent* counterpart, bool moved) {
                 CompareEvents(one, other, event, counterpart, moved);
               });
  }

  void CompareEvents(std::size_t one, std::size_t other, const ComparedEvent* event, const ComparedEvent* counterpart,
                     bool moved) {
    const bool both = event != nullptr && counterpart != nullptr;
    compared.first = compared.second = Matching::none;
    compared.firstEvent = compared.secondEvent = std::nullopt;
    compared.firstOccurrence = compared.secondOccurrence = 0;
    if (counterpart != nullptr) {
      compared.second = other;
      compared.event = counterpart->name;
      compared.secondEvent = counterpart->number;
      compared.secondOccurrence = Count(ofSecond, counterpart->name);
      compared.at = InTimeOf(first.At(one), second.At(other), counterpart->at);
    }
    if (event != nullptr) {
      compared.first = one;
      compared.event = event->name;
      compared.firstEvent = event->number;
      compared.firstOccurrence = Count(ofFirst, event->name);
      compared.at = event->at;
    }
    compared.differs = !both || moved;
    compared.kind = both ? Kind::EventOrder : Kind::Event;
    Visit("", 1, nullptr, nullptr);
    if (both) {
      CompareParameters(event->parameters, counterpart->parameters);
    }
  }

  void CompareParameters(const Parameters& ones, const Parameters& others) {
    compared.kind = Kind::Parameter;
    const std::vector<std::size_t> ofOnes = OccurrencesIn(ones), ofOthers = OccurrencesIn(others);
    const std::vector<std::size_t> places = PlacesOf(ones, ofOnes, others, ofOthers);
    std::vector<bool> met(others.size());
    for (std::size_t at = 0; at < ones.size(); ++at) {
      const Value* const value = places[at] < others.size() ? &others[places[at]].value : nullptr;
      if (value != nullptr) {
        met[places[at]] = true;
      }
      compared.differs = value == nullptr || !rules.Same(ones[at].name, ones[at].value, *value);
      Visit(ones[at].name, ofOnes[at], &ones[at].value, value);
    }
    compared.differs = true;
    for (std::size_t at = 0; at < others.size(); ++at) {
      if (!met[at]) {
        Visit(others[at].name, ofOthers[at], nullptr, &others[at].value);
      }
    }
  }

  // Which one of its name each parameter of an event is.
  static std::vector<std::size_t> OccurrencesIn(const Parameters& parameters) {
    Counts seen;
    std::vector<std::size_t> occurrences;
    occurrences.reserve(parameters.size());
    for (const ComparedEvent::Parameter& parameter : parameters) {
      occurrences.push_back(Count(seen, parameter.name));
    }
    return occurrences;
  }

  // Where the parameters of one event are among those of the other; mostly in the same places.
  static std::vector<std::size_t> PlacesOf(const Parameters& ones, const std::vector<std::size_t>& ofOnes,
                                           const Parameters& others, const std::vector<std::size_t>& ofOthers) {
    std::map<std::pair<std::string_view, std::size_t>, std::size_t> known;
    if (!std::equal(ones.begin(), ones.end(), others.begin(), others.end(),
                    [](const auto& one, const auto& other) { return one.name == other.name; })) {
      for (std::size_t at = 0; at < others.size(); ++at) {
        known[{others[at].name, ofOthers[at]}] = at;
      }
    }
    std::vector<std::size_t> places(ones.size());
    for (std::size_t at = 0; at < ones.size(); ++at) {
      const auto found = known.find({ones[at].name, ofOnes[at]});
      places[at] = known.empty() ? at : found == known.end() ? others.size() : found->second;
    }
    return places;
  }

  void Visit(const std::string& parameter, std::size_t occurrence, const Value* one, const Value* other) {
    compared.parameter = parameter;
    compared.occurrence = occurrence;
    compared.firstValue = one != nullptr ? std::optional(*one) : std::nullopt;
    compared.secondValue = other != nullptr ? std::optional(*other) : std::nullopt;
    compared.by = one != nullptr && other != nullptr && one->number && other->number
                      ? std::optional(*one->number - *other->number)
                      : std::nullopt;
    visit(compared);
  }

  const RunTree &first, &second;
  const Matching& matching;
  const ComparisonRules& rules;
  EventStream &firstEvents, &secondEvents;
  const Comparison::Visitor& visit;
  Compared compared;
  Counts ofFirst, ofSecond;  // events of each name so far in the executions
};

}  // namespace

void CompareEvents(const Comparison& comparison, const ComparisonRules& rules, EventStream& first, EventStream& second,
                   const Comparison::Visitor& visit) {
  Comparer(comparison, rules, first, second, visit).Run();
}

}  // namespace Velora::Store
