#include "store/comparing/ComparedExecutions.h"

#include "store/reading/Executions.h"
#include "store/values/Json.h"

#include <cmath>

namespace Velora::Store {

namespace {

using Kind = Compared::Kind;

Value StatusOf(const TreeNode& node) {
  const std::string code = node.status ? std::to_string(*node.status) : "null";
  return {code, code, std::nullopt};
}

std::optional<double> SecondsOf(const TreeNode& node) {
  return node.startedAt && node.statusAt && node.status && node.status != StatusCode::Running
             ? std::optional(static_cast<double>(*node.statusAt - *node.startedAt) / 1e6)
             : std::nullopt;
}

Value NumberOf(double number) {
  Value value;
  AppendNumber(value.json, number);
  value.words = value.json;
  value.number = number;
  return value;
}

class Comparer {
 public:
  Comparer(const Comparison& comparison, const ComparisonRules& rules, const Comparison::Visitor& visit)
      : first(comparison.First()),
        second(comparison.Second()),
        matching(comparison.Matched()),
        rules(rules),
        visit(visit) {}

  void Run() const {
    for (std::size_t place = 0; place < first.Size(); ++place) {
      if (matching.ofFirst[place] != Matching::none) {
        CompareBoth(place, matching.ofFirst[place]);
      } else if (matching.ofFirst[first.At(place).parent] != Matching::none) {
        VisitAlone(place, Matching::none, first.At(place).startedAt);
      }
    }
    for (std::size_t place = 0; place < second.Size(); ++place) {
      const std::size_t parent = second.At(place).parent;
      if (matching.ofSecond[place] == Matching::none && matching.ofSecond[parent] != Matching::none) {
        VisitAlone(Matching::none, place,
                   InTimeOf(first.At(matching.ofSecond[parent]), second.At(parent), second.At(place).startedAt));
      }
    }
  }

 private:
  void VisitAlone(std::size_t one, std::size_t other, std::optional<long long> at) const {
    Compared compared;
    compared.first = one;
    compared.second = other;
    compared.at = at;
    visit(compared);
  }

  void CompareBoth(std::size_t one, std::size_t other) const {
    const TreeNode &node = first.At(one), &counterpart = second.At(other);
    Compared compared;
    compared.kind = Kind::Order;
    compared.differs = matching.moved[one];
    compared.first = one;
    compared.second = other;
    compared.at = node.startedAt;
    visit(compared);
    compared.kind = Kind::Status;
    compared.differs = node.status != counterpart.status;
    compared.firstValue = StatusOf(node);
    compared.secondValue = StatusOf(counterpart);
    compared.at = node.status == StatusCode::Running ? std::nullopt : node.statusAt;
    visit(compared);
    CompareVersions(compared);
    CompareDurations(compared);
  }

  void CompareVersions(Compared& compared) const {
    const TreeActivity &one = first.ActivityOf(compared.first), &other = second.ActivityOf(compared.second);
    compared.kind = Kind::Version;
    compared.differs = one.name != other.name || one.version != other.version;
    const auto inWords = [](const TreeActivity& activity) {
      return activity.version.empty() ? activity.name : activity.name + ' ' + activity.version;
    };
    compared.firstValue = ValueOf(inWords(one));
    compared.secondValue = ValueOf(inWords(other));
    compared.at = std::nullopt;
    visit(compared);
  }

  void CompareDurations(Compared& compared) const {
    const auto one = SecondsOf(first.At(compared.first)), other = SecondsOf(second.At(compared.second));
    if (!one || !other) {
      return;
    }
    compared.kind = Kind::Duration;
    compared.differs = std::abs(*one - *other) > rules.shortestDifference &&
                       (*one > rules.slower * *other || *other > rules.slower * *one);
    compared.firstValue = NumberOf(*one);
    compared.secondValue = NumberOf(*other);
    compared.by = *one / *other;
    visit(compared);
  }

  const RunTree &first, &second;
  const Matching& matching;
  const ComparisonRules& rules;
  const Comparison::Visitor& visit;
};

}  // namespace

void CompareExecutions(const Comparison& comparison, const ComparisonRules& rules, const Comparison::Visitor& visit) {
  Comparer(comparison, rules, visit).Run();
}

}  // namespace Velora::Store
