#pragma once

#include "support/Query.h"
#include "support/ScratchFolder.h"
#include "support/TestStore.h"

#include <TSAL/Methods.h>
#include <TSAL/Reason.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>

// The tests of the local TS use it as the component does: the shared library, on real files.

using namespace Quor::TolvaServices;
using namespace Types;
using namespace Methods;
using namespace std::string_literals;
namespace fs = std::filesystem;

/// Expects an action to raise a TsError that holds the words.
inline void ExpectError(const std::function<void()>& action, std::initializer_list<std::string> words) {
  try {
    action();
    ADD_FAILURE() << "nothing was raised; expected: " << *words.begin();
  } catch (const TsError& error) {
    for (const std::string& word : words) {
      EXPECT_NE(std::string(error.what()).find(word), std::string::npos) << word << "\nis not in: " << error.what();
    }
  }
}

inline ActivityExecutionStatus Status(int code, std::int64_t microseconds) {
  return {static_cast<Enums::ActivityExecStatus>(code), DateTimeOffset::FromMicroseconds(microseconds)};
}

inline void Save(ActivityExecution& execution) {
  ActivityMethods::SaveActivityExecution(execution, SessionHandle::Empty);
}
inline ActivityExecution Saved(const std::string& node, const ActivityExecution* parent = nullptr) {
  ActivityExecution execution;
  execution.Node = node;
  execution.Parent = parent;
  execution.Kind = INT32_MIN;
  execution.Status = Status(4, 1);
  Save(execution);
  return execution;
}
inline ActivityExecution Load(const Tsid& id) { return ActivityMethods::GetActivityExecution(id, true, nullptr); }

template <typename... Parameters>
InstrumentEvent Event(const std::string& name, const Parameters&... parameters) {
  return {name, {}, {std::make_shared<Parameters>(parameters)...}, {}, {}};
}
inline void SaveEvent(const InstrumentEvent& event, const Tsid& configuration = Tsid(), const Tsid* execution = nullptr,
                      const SessionHandle& session = SessionHandle::Empty) {
  LoggingMethods::SaveEvent(event, configuration, execution, false, session);
}

class LocalTsTest : public testing::Test {
 protected:
  /// Puts settings into a folder of the scratch folder; the database's path is relative to it.
  void Configure(const std::string& database, const std::string& within = "") {
    const TestStore store(folder / within / database);
    store.Make();
    folder.Write(within.empty() ? "TSAL.config" : within + "/TSAL.config",
                 "<TSAL Instrument='Scope'><Database " + store.Attributes(database) + "/></TSAL>");
    TSInstance::SetTsalPath((folder / within).string());
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
