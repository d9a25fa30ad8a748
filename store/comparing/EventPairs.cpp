#include "store/comparing/EventPairs.h"

#include "store/comparing/Alignment.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <map>

namespace Velora::Store {

namespace {

constexpr std::size_t mostBytes = std::size_t{16} << 20U;  // of the events of one side in memory
constexpr double alone = 4;                                // so many equal events are worth an event that is alone

/// The next events of one side.
class Window {
 public:
  explicit Window(EventStream& stream) : stream(stream) {}

  void Fill() {
    while (more && events.size() < mostWeighed && bytes < mostBytes) {
      if (std::optional<ComparedEvent> event = stream.Next()) {
        bytes += SizeOf(*event);
        events.push_back(std::move(*event));
      } else {
        more = false;
      }
    }
  }
  void Drop(std::size_t count) {
    for (; count > 0; --count) {
      bytes -= SizeOf(events.front());
      events.pop_front();
    }
  }
  bool More() const { return more; }
  std::size_t Size() const { return events.size(); }
  const ComparedEvent& operator[](std::size_t place) const { return events[place]; }

 private:
  static std::size_t SizeOf(const ComparedEvent& event) {
    std::size_t size = event.name.size();
    for (const ComparedEvent::Parameter& parameter : event.parameters) {
      size += parameter.name.size() + parameter.value.json.size() + parameter.value.words.size();
    }
    return size;
  }

  EventStream& stream;
  std::deque<ComparedEvent> events;
  std::size_t bytes = 0;
  bool more = true;  // whether the stream can have more than these
};

bool AreSame(const ComparedEvent::Parameter& one, const ComparedEvent::Parameter& other, const Rules& rules) {
  return one.name == other.name && rules.Same(one.name, one.value, other.value);
}

double DistanceBetween(const ComparedEvent::Parameter& one, const ComparedEvent::Parameter& other, const Rules& rules) {
  if (AreSame(one, other, rules)) {
    return 0;
  }
  if (one.name != other.name || !one.value.number || !other.value.number) {
    return 1;
  }
  const double difference = std::abs(*one.value.number - *other.value.number);
  const double share = difference / (std::abs(*one.value.number) + std::abs(*other.value.number));
  return std::isfinite(share) ? 0.5 + share / 2 : 1;
}

/// The share of the parameters with equal values.
double AgreementOf(const ComparedEvent& one, const ComparedEvent& other, const Rules& rules) {
  const std::size_t most = std::max(one.parameters.size(), other.parameters.size());
  std::size_t equal = 0;
  for (std::size_t at = 0; at < std::min(one.parameters.size(), other.parameters.size()); ++at) {
    equal += static_cast<std::size_t>(AreSame(one.parameters[at], other.parameters[at], rules));
  }
  return most == 0 ? 1 : static_cast<double>(equal) / static_cast<double>(most);
}

class Pairing {
 public:
  Pairing(EventStream& first, EventStream& second, const Rules& rules, const OnEvents& report)
      : first(first), second(second), rules(rules), report(report) {}

  void Run() {
    Fill();
    while (first.More() || second.More()) {
      if (!StepInOrder()) {
        FindWay();
      }
      Fill();
    }
    AlignRest();
  }

 private:
  void Fill() {
    first.Fill();
    second.Fill();
  }

  // Takes the next two if they belong together as well as those before.
  bool StepInOrder() {
    if (first.Size() == 0 || second.Size() == 0 || first[0].name != second[0].name) {
      return false;
    }
    const double agreement = AgreementOf(first[0], second[0], rules);
    if (agreement < usual / 2) {
      return false;
    }
    usual = 0.9 * usual + 0.1 * agreement;
    report(&first[0], &second[0], false);
    Drop(1, 1);
    return true;
  }

  // Takes about half of the events in memory, on the way on which most values are equal.
  void FindWay() {
    const auto cost = [&](std::size_t one, std::size_t other) {
      return first[one].name == second[other].name ? std::optional(1 - AgreementOf(first[one], second[other], rules))
                                                   : std::nullopt;
    };
    std::size_t ofFirst = 0, ofSecond = 0, matches = 0;
    double agreement = 0;
    for (const auto& [one, other, moved] : CheapestWay(first.Size(), second.Size(), cost, alone, true)) {
      if (matches > 0 && std::max(one, other) >= mostWeighed / 2) {
        break;
      }
      ReportAlone(ofFirst, one, ofSecond, other);
      report(&first[one], &second[other], false);
      ofFirst = one + 1;
      ofSecond = other + 1;
      agreement += AgreementOf(first[one], second[other], rules);
      ++matches;
    }
    if (matches == 0) {  // nothing belongs together
      ReportAlone(0, ofFirst = first.Size(), 0, ofSecond = second.Size());
    } else {
      usual = agreement / static_cast<double>(matches);
    }
    Drop(ofFirst, ofSecond);
  }

  void AlignRest() {
    const std::vector<std::size_t> ones = KeysOf(first), others = KeysOf(second);
    const auto distance = [&](std::size_t one, std::size_t other) {
      return DistanceOf(first[one].parameters, second[other].parameters, rules);
    };
    std::vector<Match> matches;
    if (ones == others) {
      for (std::size_t at = 0; at < ones.size(); ++at) {
        matches.push_back({at, at});
      }
    } else {
      matches = Align(ones, others, distance);
    }
    std::vector<bool> matched(second.Size());
    for (const Match& match : matches) {
      matched[match.second] = true;
    }
    std::size_t ofFirst = 0, ofSecond = 0;
    const auto reportSecondUpTo = [&](std::size_t place) {
      for (; ofSecond < place; ++ofSecond) {
        if (!matched[ofSecond]) {
          report(nullptr, &second[ofSecond], false);
        }
      }
    };
    for (const auto& [one, other, moved] : matches) {
      ReportAlone(ofFirst, one, 0, 0);
      if (!moved) {
        reportSecondUpTo(other);
      }
      report(&first[one], &second[other], moved);
      ofFirst = one + 1;
    }
    ReportAlone(ofFirst, first.Size(), 0, 0);
    reportSecondUpTo(second.Size());
  }

  std::vector<std::size_t> KeysOf(const Window& window) {
    std::vector<std::size_t> keys;
    for (std::size_t at = 0; at < window.Size(); ++at) {
      keys.push_back(names.try_emplace(window[at].name, names.size()).first->second);
    }
    return keys;
  }

  void ReportAlone(std::size_t fromFirst, std::size_t toFirst, std::size_t fromSecond, std::size_t toSecond) {
    for (; fromFirst < toFirst; ++fromFirst) {
      report(&first[fromFirst], nullptr, false);
    }
    for (; fromSecond < toSecond; ++fromSecond) {
      report(nullptr, &second[fromSecond], false);
    }
  }

  void Drop(std::size_t ofFirst, std::size_t ofSecond) {
    first.Drop(ofFirst);
    second.Drop(ofSecond);
  }

  Window first, second;
  const Rules& rules;
  const OnEvents& report;
  double usual = 0;  // agreement of the events that were matched lately
  std::map<std::string, std::size_t> names;
};

}  // namespace

void PairEvents(EventStream& first, EventStream& second, const Rules& rules, const OnEvents& report) {
  Pairing(first, second, rules, report).Run();
}

double DistanceOf(const Parameters& ones, const Parameters& others, const Rules& rules) {
  const std::size_t most = std::max(ones.size(), others.size());
  const std::size_t common = std::min(ones.size(), others.size());
  auto sum = static_cast<double>(most - common);
  for (std::size_t at = 0; at < common; ++at) {
    sum += DistanceBetween(ones[at], others[at], rules);
  }
  return most == 0 ? 0 : sum / static_cast<double>(most);
}

}  // namespace Velora::Store
