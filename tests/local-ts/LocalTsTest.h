#pragma once

#include "support/Query.h"
#include "support/ScratchFolder.h"

#include <TSAL/Methods.h>

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

// The tests of the local TS use it as the component does: the shared library, on real files.

using namespace Quor::TolvaServices;
using Methods::ActivityMethods;
using Methods::LoggingMethods;
using Methods::SystemMethods;
using Types::ActivityExecution;
using Types::DateTimeOffset;
using Types::SessionHandle;
using Types::Tsid;
using Types::TSInstance;

/// What an action raises as a TsError; empty when it raises nothing.
template <typename Action>
std::string ErrorOf(Action action) {
  try {
    action();
  } catch (const TsError& error) {
    return error.what();
  }
  return {};
}

inline void ExpectWords(const std::string& error, std::initializer_list<std::string> words) {
  for (const std::string& word : words) {
    EXPECT_NE(error.find(word), std::string::npos) << "missing: " << word << "\nin: " << error;
  }
}

inline Types::ActivityExecutionStatus Status(int code, std::int64_t microseconds) {
  return {static_cast<Types::Enums::ActivityExecStatus>(code), DateTimeOffset::FromMicroseconds(microseconds)};
}

inline ActivityExecution Execution(const std::string& node, const ActivityExecution* parent = nullptr) {
  ActivityExecution execution;
  execution.Node = node;
  execution.Parent = parent;
  execution.Status = Status(4, 1);
  return execution;
}

template <typename... Parameters>
Types::InstrumentEvent Event(const std::string& name, const Parameters&... parameters) {
  Types::InstrumentEvent event;
  event.Name = name;
  (event.Parameters.push_back(std::make_shared<Parameters>(parameters)), ...);
  return event;
}

inline void Save(ActivityExecution& execution) {
  ActivityMethods::SaveActivityExecution(execution, SessionHandle::Empty);
}
inline ActivityExecution Load(const Tsid& id) { return ActivityMethods::GetActivityExecution(id, true, nullptr); }
inline void SaveEvent(const Types::InstrumentEvent& event, const Tsid& configuration = Tsid(),
                      const Tsid* execution = nullptr, const SessionHandle& session = SessionHandle::Empty) {
  LoggingMethods::SaveEvent(event, configuration, execution, false, session);
}

class LocalTsTest : public testing::Test {
 protected:
  static std::string Config(const std::string& database) {
    return "<TSAL Instrument='Scope 1'><Database Backend='sqlite3' Connection='" + database + "'/></TSAL>\n";
  }
  /// Puts settings into the scratch folder; the database's path is relative to it.
  void Configure(const std::string& database) {
    folder.Write("TSAL.config", Config(database));
    TSInstance::SetTsalPath(folder.path.string());
  }
  SessionHandle Begin(const std::string& database = "ts.db") {
    Configure(database);
    return TSInstance::BeginSession();
  }
  std::string Recorded(const std::string& statement, const std::string& database = "ts.db") const {
    return Query(folder / database, statement);
  }

  const ScratchFolder folder;
};
