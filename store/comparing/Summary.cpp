#include "store/comparing/Summary.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Velora::Store {

namespace {

using Kind = Compared::Kind;

long long TimeOf(const Compared& compared) { return compared.at.value_or(std::numeric_limits<long long>::max()); }

double AmountOf(const Compared& compared) {
  const double by = compared.by.value_or(0);
  if (compared.kind == Kind::Duration) {
    return std::abs(std::log(by));
  }
  return std::isnan(by) ? std::numeric_limits<double>::infinity() : std::abs(by);
}

bool HaveSame(const std::optional<Value>& one, const std::optional<Value>& other) {
  return one.has_value() == other.has_value() && (!one || one->json == other->json);
}

}  // namespace

bool Summary::Key::operator<(const Key& other) const {
  const auto tied = [](const Key& key) {
    return std::tie(key.kind, key.isFirstAlone, key.isSecondAlone, key.name, key.parameter, key.occurrence);
  };
  return tied(*this) < tied(other);
}

Summary::Key Summary::KeyOf(const Compared& compared) {
  Key key{compared.kind, false, false, compared.event, compared.parameter, compared.occurrence};
  if (compared.kind == Kind::Version) {
    key.name = compared.firstValue->words;
    key.parameter = compared.secondValue->words;
  } else if (compared.kind == Kind::Execution || compared.kind == Kind::Event) {
    key.isFirstAlone = compared.second == Matching::none;
    key.isSecondAlone = compared.first == Matching::none;
  }
  return key;
}

const Summary::Group& Summary::Add(const Compared& compared) {
  Group& group = groups[KeyOf(compared)];
  ++group.compared;
  if (!compared.differs) {
    return group;
  }
  ++group.differ;
  if (group.differ == 1) {
    group.earliest = compared;
  } else {
    group.constant = group.constant && HaveSame(group.first.front().firstValue, compared.firstValue) &&
                     HaveSame(group.first.front().secondValue, compared.secondValue);
  }
  if (group.first.size() < mostShown) {
    group.first.push_back(compared);
  }
  if (compared.by && (!group.largest || AmountOf(compared) > AmountOf(*group.largest))) {
    group.largest = compared;
  }
  if (TimeOf(compared) < TimeOf(*group.earliest)) {
    group.earliest = compared;
  }
  return group;
}

bool Summary::IsEmpty(bool durationsCount) const {
  return std::none_of(groups.begin(), groups.end(), [&](const auto& group) {
    return group.second.differ > 0 && (durationsCount || group.first.kind != Kind::Duration);
  });
}

const Compared* Summary::Parting() const {
  const Compared* parting = nullptr;
  std::tuple<int, long long, long long> least;
  for (const auto& [key, group] : groups) {
    if (group.differ == 0 || key.kind == Kind::Version || key.kind == Kind::Duration) {
      continue;
    }
    const int rank = group.IsAlwaysDifferent() ? 2 : key.kind == Kind::Status ? 1 : 0;
    const std::tuple place(rank, TimeOf(*group.earliest), group.earliest->firstEvent.value_or(0));
    if (parting == nullptr || place < least) {
      parting = &*group.earliest;
      least = place;
    }
  }
  return parting;
}

}  // namespace Velora::Store
