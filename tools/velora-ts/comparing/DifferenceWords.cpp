#include "comparing/DifferenceWords.h"

#include "output/StateWords.h"
#include "output/Terminal.h"
#include "output/Times.h"
#include "output/Words.h"

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr const char* nothing = "-";  // of a value that is not there

std::string StateOf(const TreeNode& node, Hosts& hosts) {
  Execution execution;
  execution.key = node.key;
  execution.status = node.status;
  return StateInWords(execution, hosts.Of(execution).state);
}

}  // namespace

DifferenceWords::DifferenceWords(const Differences& found, int digits)
    : found(found),
      digits(digits),
      one(Printable(found.first.guid.substr(0, shortGuid))),
      other(Printable(found.second.guid.substr(0, shortGuid))) {
  if (one == other) {  // of a copy of the store
    one = "RUN";
    other = "RUN2";
  }
}

std::string DifferenceWords::Name(const std::string& name, std::size_t occurrence) {
  return Shown(name) + (occurrence > 1 ? " (" + std::to_string(occurrence) + ')' : "");
}

std::string DifferenceWords::Where(const Compared& compared, bool withRoot) const {
  const bool isFirst = compared.first != Matching::none;
  const RunTree& tree = isFirst ? found.comparison.First() : found.comparison.Second();
  std::string words;
  for (std::size_t place = isFirst ? compared.first : compared.second;; place = tree.At(place).parent) {
    if (place != tree.Root() || withRoot || words.empty()) {
      words.insert(0, Name(tree.At(place).node, tree.At(place).ordinal) + (words.empty() ? "" : " > "));
    }
    if (place == tree.Root()) {
      break;
    }
  }
  const std::size_t occurrence = isFirst ? compared.firstOccurrence : compared.secondOccurrence;
  return occurrence > 0 ? words + " > " + Shown(compared.event) + ' ' + std::to_string(occurrence) : words;
}

std::string DifferenceWords::What(const Compared& compared) const {
  switch (compared.kind) {
    case Compared::Kind::Execution:
    case Compared::Kind::Event:
      return "only in " + Side(compared);
    case Compared::Kind::Order:
    case Compared::Kind::EventOrder:
      return "in another order";
    default:
      break;
  }
  std::string words = compared.kind == Compared::Kind::Status ? "state" : Name(compared.parameter, compared.occurrence);
  const auto [value, otherValue] = Both(compared);
  words += ": " + value + " in " + one + ", " + otherValue + " in " + other;
  return compared.by ? words + ", a difference of " + Difference(compared) : words;
}

std::string DifferenceWords::Durations(const Compared& compared) const {
  const auto [duration, otherDuration] = Both(compared);
  return "duration: " + duration + " in " + one + ", " + otherDuration + " in " + other;
}

std::pair<std::string, std::string> DifferenceWords::Both(const Compared& compared) const {
  for (const int shown : {digits, allDigits}) {
    std::pair both(InWords(compared, true, shown), InWords(compared, false, shown));
    if (both.first != both.second || shown == allDigits) {
      return both;
    }
  }
  return {};
}

std::string DifferenceWords::Difference(const Compared& compared) const {
  const std::string words = compared.by ? NumberInWords(*compared.by, digits) : "";
  return compared.by && *compared.by > 0 ? '+' + words : words;
}

std::string DifferenceWords::Side(const Compared& compared) const {
  return compared.first != Matching::none ? one : other;
}

std::string DifferenceWords::InWords(const Compared& compared, bool ofFirst, int shown) const {
  const std::optional<Value>& value = ofFirst ? compared.firstValue : compared.secondValue;
  if (!value) {
    return nothing;
  }
  if (compared.kind == Compared::Kind::Status) {
    return ofFirst ? StateOf(found.comparison.First().At(compared.first), found.firstHosts)
                   : StateOf(found.comparison.Second().At(compared.second), found.secondHosts);
  }
  if (compared.kind == Compared::Kind::Duration) {
    return Duration(*value->number, true);
  }
  return value->IsNumber() ? NumberInWords(*value->number, shown) : Printable(value->words);
}

}  // namespace Velora::Ts
