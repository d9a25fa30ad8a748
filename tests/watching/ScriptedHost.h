#pragma once

#include <TSAL/Methods.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <exception>
#include <filesystem>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/// What a host records, in the words of a test. Executions are called by their nodes.
class Recorder {
 public:
  explicit Recorder(const std::filesystem::path& folder) {
    Quor::TolvaServices::Types::TSInstance::SetTsalPath(folder.string());
    Quor::TolvaServices::Types::TSInstance::BeginSession();
    versions = Activities::RegisterAndGetActivityVersions(folder / "activities.xml", Session::Empty);
  }

  void Begin(const std::string& node, const std::string& activity, const std::string& parent = "") {
    Execution& execution = executions[node];
    execution.Node = node;
    execution.ActivityVersion = versions.at(activity);
    execution.Parent = parent.empty() ? nullptr : &executions.at(parent);
    Save(execution, Status::Running);
  }
  /// Knows an execution that another host has begun.
  void Know(const std::string& node, const std::string& guid) {
    executions[node] = Activities::GetActivityExecution(Quor::TolvaServices::Types::Tsid(guid), true, nullptr);
  }
  void End(const std::string& node) { Save(executions.at(node), Status::Done); }

  /// @param node empty for an event outside every run.
  void Event(const std::string& node, const std::string& name, const std::string& parameter, const std::string& value) {
    using namespace Quor::TolvaServices::Types;
    InstrumentEvent event;
    event.Name = name;
    event.Parameters = {std::make_shared<InstrumentParameterString>(parameter, value)};
    const Tsid* const execution = node.empty() ? nullptr : &executions.at(node).Id;
    Quor::TolvaServices::Methods::LoggingMethods::SaveEvent(event, Tsid(), execution, false, Session::Empty);
  }

 private:
  using Activities = Quor::TolvaServices::Methods::ActivityMethods;
  using Execution = Quor::TolvaServices::Types::ActivityExecution;
  using Session = Quor::TolvaServices::Types::SessionHandle;
  using Status = Quor::TolvaServices::Types::Enums::ActivityExecStatus;

  static void Save(Execution& execution, Status status) {
    execution.Status = {status, Quor::TolvaServices::Types::DateTimeOffset::Now()};
    Activities::SaveActivityExecution(execution, Session::Empty);
  }

  std::map<std::string, Quor::TolvaServices::Types::ActivityVersion> versions;
  std::map<std::string, Execution> executions;
};

/// A host in a process of its own, which records step by step. To be made before the test has threads.
class ScriptedHost {
 public:
  using Step = std::function<void(Recorder&)>;

  /// Each step also happens after the session has begun, which the first one does.
  ScriptedHost(std::filesystem::path folder, std::vector<Step> steps) {
    EXPECT_EQ(pipe2(orders.data(), O_CLOEXEC), 0);
    EXPECT_EQ(pipe2(answers.data(), O_CLOEXEC), 0);
    process = fork();
    if (process == 0) {
      close(orders[1]);
      Obey(folder, steps);
      _exit(0);
    }
    close(orders[0]);
    close(answers[1]);
  }
  ScriptedHost(const ScriptedHost&) = delete;
  ScriptedHost& operator=(const ScriptedHost&) = delete;
  ~ScriptedHost() {
    Kill();
    close(orders[1]);
    close(answers[0]);
  }

  /// Does the next step. Returns when it is recorded.
  void Next() const {
    char done = 0;
    EXPECT_EQ(write(orders[1], "!", 1), 1);
    EXPECT_EQ(read(answers[0], &done, 1), 1) << "the host ended";
  }
  void Kill() {
    if (const pid_t one = std::exchange(process, 0); one > 0) {
      kill(one, SIGKILL);
      waitpid(one, nullptr, 0);
    }
  }

 private:
  void Obey(const std::filesystem::path& folder, const std::vector<Step>& steps) const {
    try {
      std::unique_ptr<Recorder> recorder;
      char order = 0;
      for (const Step& step : steps) {
        if (read(orders[0], &order, 1) != 1) {
          return;
        }
        if (!recorder) {
          recorder = std::make_unique<Recorder>(folder);
        }
        step(*recorder);
        if (write(answers[1], "!", 1) != 1) {
          return;
        }
      }
      while (read(orders[0], &order, 1) == 1) {
      }
    } catch (const std::exception& error) {
      std::cerr << "the host: " << error.what() << '\n';
    }
  }

  std::array<int, 2> orders{}, answers{};
  pid_t process = 0;
};
