#include "watching/AlertCalls.h"

#include "output/Terminal.h"
#include "output/Words.h"

#include <algorithm>
#include <array>
#include <thread>
#include <utility>

namespace Velora::Ts {

using namespace std::chrono_literals;

namespace {

constexpr int mostAtOnce = 8;
constexpr std::size_t mostOfSubject = 8;
constexpr std::array<std::chrono::seconds, 3> pauses{1s, 10s, 60s};  // before a call is tried again
constexpr std::size_t longestValue = 200, longestWords = 500;        // columns

}  // namespace

std::string InWords(const Alert& alert) { return Cut(Printable(alert.condition.words), longestWords); }

std::map<std::string, std::string> VariablesOf(const Alert& alert) {
  const AlertCondition& condition = alert.condition;
  const auto shown = [](const std::string& stored) { return Cut(Shown(stored), longestValue); };
  return {{"VELORA_EVENT", alert.begins ? "begins" : "ends"},
          {"VELORA_CONDITION", NameOf(condition.subject.kind)},
          {"VELORA_STORE", shown(condition.store)},
          {"VELORA_INSTRUMENT", shown(condition.subject.instrument)},
          {"VELORA_RUN", shown(condition.run)},
          {"VELORA_NODE", shown(condition.node)},
          {"VELORA_PARAMETER", shown(condition.parameter)},
          {"VELORA_VALUE", shown(condition.value)},
          {"VELORA_SINCE", shown(condition.since)},
          {"VELORA_TEXT", InWords(alert)}};
}

void AlertCalls::Add(const Alert& alert) {
  Call call{VariablesOf(alert), InWords(alert)};
  Queue& queue = queues[alert.condition.subject];
  queue.push_back(std::move(call));
  if (queue.size() > mostOfSubject) {
    complain("the command for '" + queue[1].words + "' and the end of that is not called: the calls take too long");
    queue.erase(queue.begin() + 1, queue.begin() + 3);
  }
}

bool AlertCalls::IsDue(const Call& call, Clock::time_point now) const {
  const auto isRunning = [](const auto& one) { return !one.second.empty() && one.second.front().running != nullptr; };
  return call.due <= now && std::count_if(queues.begin(), queues.end(), isRunning) < mostAtOnce;
}

void AlertCalls::Attend(Clock::time_point now) {
  const auto isEmpty = [](const auto& one) { return one.second.empty(); };
  std::erase_if(queues, isEmpty);  // for which there was no memory
  for (auto& [subject, queue] : queues) {
    Call& call = queue.front();
    if (call.running != nullptr ? See(call, now) : IsDue(call, now) && Begin(call, now)) {
      queue.pop_front();
    }
  }
  std::erase_if(queues, isEmpty);
}

bool AlertCalls::Begin(Call& call, Clock::time_point now) {
  try {
    call.running = std::make_unique<System::ShellCommand>(command, call.variables);
    call.due = now + longest;
    return false;
  } catch (const System::Failure& reason) {
    return Failed(call, reason.what(), now);
  }
}

bool AlertCalls::See(Call& call, Clock::time_point now) {
  const std::optional<int> result = call.running->Result();
  if (!result && now < call.due) {
    return false;
  }
  call.running.reset();
  if (!result) {
    return Failed(call, "it did not end within " + std::to_string(longest.count()) + " s, so it was killed", now);
  }
  return *result == 0 || Failed(call, "its exit code is " + std::to_string(*result) + "; expected 0", now);
}

bool AlertCalls::Failed(Call& call, const std::string& how, Clock::time_point now) {
  const bool isLast = call.tries == pauses.size();
  const std::string next =
      isLast ? "it is not tried again" : "it is tried again in " + std::to_string(pauses[call.tries].count()) + " s";
  complain("the command for '" + call.words + "' failed: " + how + "; " + next);
  call.due = isLast ? now : now + pauses[call.tries];
  ++call.tries;
  return isLast;
}

void AlertCalls::End() {
  for (auto& [subject, queue] : queues) {
    while (!queue.empty() && queue.back().running == nullptr) {
      complain("the command for '" + queue.back().words + "' is not called any more: asked to end");
      queue.pop_back();
    }
    if (!queue.empty()) {
      queue.front().tries = pauses.size();
    }
  }
  std::erase_if(queues, [](const auto& one) { return one.second.empty(); });
  while (!queues.empty()) {
    std::this_thread::sleep_for(20ms);
    Attend(Clock::now());
  }
}

}  // namespace Velora::Ts
