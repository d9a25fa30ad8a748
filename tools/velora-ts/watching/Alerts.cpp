#include "watching/Alerts.h"

#include <utility>

namespace Velora::Ts {

using Holds = AlertCondition::Holds;

const char* NameOf(AlertKind kind) {
  switch (kind) {
    case AlertKind::Unreadable:
      return "unreadable";
    case AlertKind::Behind:
      return "behind";
    case AlertKind::Stopped:
      return "stopped";
    case AlertKind::Silent:
      return "silent";
    case AlertKind::Outside:
      return "outside";
  }
  return "";
}

std::vector<Alert> Alerts::Look(const std::vector<AlertCondition>& conditions, Clock::time_point now) {
  std::set<int> unreadable;
  for (const AlertCondition& condition : conditions) {
    if (condition.subject.kind == AlertKind::Unreadable && condition.holds == Holds::Yes) {
      unreadable.insert(condition.subject.store);
    }
  }
  const auto isTold = [&](const AlertSubject& subject) {
    return subject.kind == AlertKind::Unreadable || unreadable.count(subject.store) == 0;
  };
  std::vector<Alert> alerts;
  std::set<AlertSubject> told;
  for (const AlertCondition& condition : conditions) {
    if (isTold(condition.subject)) {
      told.insert(condition.subject);
      Take(condition, now, alerts);
    }
  }
  for (auto& [subject, one] : known) {
    if (isTold(subject) && told.count(subject) == 0) {
      one.last.words = "there is no more of it in the store";
      Change(one, false, now, alerts);
    }
  }
  std::erase_if(known, [](const auto& one) { return !one.second.begun && !one.second.otherwise; });
  for (const AlertCondition& condition : conditions) {
    if (condition.subject.kind == AlertKind::Unreadable) {
      (condition.holds == Holds::No ? read : lookedAt).insert(condition.subject.store);
    }
  }
  return alerts;
}

void Alerts::Take(const AlertCondition& condition, Clock::time_point now, std::vector<Alert>& alerts) {
  const bool holds = condition.holds == Holds::Yes;
  const auto found = known.find(condition.subject);
  if (condition.holds == Holds::NotKnown || (!holds && found == known.end())) {
    return;
  }
  Known& one = found != known.end() ? found->second : known[condition.subject];
  const bool isBeginning = holds && !one.begun && !one.otherwise;
  const std::string since = isBeginning ? condition.since : one.last.since;
  one.last = condition;
  one.last.since = since;
  if (isBeginning && IsOfTheStart(condition.subject)) {
    one.begun = one.isMuted = true;
  }
  Change(one, holds, now, alerts);
}

bool Alerts::IsOfTheStart(const AlertSubject& subject) const {
  return atStart == AtStart::OnlyNew && read.count(subject.store) == 0 &&
         (subject.kind != AlertKind::Unreadable || lookedAt.count(subject.store) == 0);
}

void Alerts::Change(Known& one, bool holds, Clock::time_point now, std::vector<Alert>& alerts) {
  if (holds == one.begun) {
    one.otherwise.reset();
    return;
  }
  one.otherwise = one.otherwise.value_or(now);
  if (now - *one.otherwise < grace && !(holds && one.last.hasLasted)) {
    return;
  }
  one.begun = holds;
  one.otherwise.reset();
  if (!std::exchange(one.isMuted, false)) {
    alerts.push_back({holds, one.last});
  }
}

}  // namespace Velora::Ts
