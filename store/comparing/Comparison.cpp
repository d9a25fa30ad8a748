#include "store/comparing/Comparison.h"

#include "store/comparing/ComparedEvents.h"
#include "store/comparing/ComparedExecutions.h"
#include "store/comparing/ExecutionContent.h"

namespace Velora::Store {

namespace {

Matching MatchByContent(const Comparison::Side& first, const RunTree& firstTree, const Comparison::Side& second,
                        const RunTree& secondTree, const Rules& rules) {
  ExecutionContent one(first.store, firstTree), other(second.store, secondTree);
  return MatchExecutions(firstTree, secondTree, [&](std::size_t ofFirst, std::size_t ofSecond) {
    return DistanceOf(one.Of(ofFirst), other.Of(ofSecond), rules);
  });
}

}  // namespace

Comparison::Comparison(const Side& first, const Side& second, ComparisonRules rules)
    : first(first),
      second(second),
      rules(std::move(rules)),
      firstTree(first.store, first.run),
      secondTree(second.store, second.run),
      matching(MatchByContent(first, firstTree, second, secondTree, this->rules)) {}

void Comparison::Visit(const Visitor& visit) const {
  CompareExecutions(*this, rules, visit);
  EventStream ones(first.store, first.run.root, rules), others(second.store, second.run.root, rules);
  CompareEvents(*this, rules, ones, others, visit);
}

}  // namespace Velora::Store
