#pragma once

#include "watching/Alert.h"

#include <VeloraSystem/ShellCommand.h>

#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace Velora::Ts {

/// The facts of an alert for a command: VELORA_EVENT, VELORA_CONDITION and others. Each value is one line without
/// control characters, and not long. A fact that there is not is empty.
std::map<std::string, std::string> VariablesOf(const Alert& alert);
/// "Scope 7 has stopped ...", printable and not long.
std::string InWords(const Alert& alert);

/// Calls a command for each alert: for one subject, one call after another. A call that fails, or takes too long, is
/// tried again a few times.
class AlertCalls {
 public:
  using Clock = std::chrono::steady_clock;
  using Complaint = std::function<void(std::string_view line)>;

  /// @param command of the system's shell.
  /// @param complain is told of each call that fails.
  AlertCalls(std::string command, std::chrono::seconds longest, Complaint complain)
      : command(std::move(command)), longest(longest), complain(std::move(complain)) {}

  /// Adds a call. If too many of its subject wait, the oldest two that did not begin are left out: a beginning and an
  /// end. So they still alternate, and the newest is always told.
  void Add(const Alert& alert);
  /// Begins what is due, and sees what has ended. It does not wait. To be called several times a second.
  void Attend(Clock::time_point now);
  /// Waits for the calls that have begun, each for its time at most. What did not begin is told.
  void End();

 private:
  struct Call {
    std::map<std::string, std::string> variables;
    std::string words;
    std::size_t tries = 0;
    Clock::time_point due = {};  // once it runs, when it is to end
    std::unique_ptr<System::ShellCommand> running = nullptr;
  };
  using Queue = std::deque<Call>;

  bool IsDue(const Call& call, Clock::time_point now) const;
  // Whether the call is done, for better or for worse.
  bool Begin(Call& call, Clock::time_point now);
  bool See(Call& call, Clock::time_point now);
  bool Failed(Call& call, const std::string& how, Clock::time_point now);

  const std::string command;
  const std::chrono::seconds longest;
  const Complaint complain;
  std::map<AlertSubject, Queue> queues;
};

}  // namespace Velora::Ts
