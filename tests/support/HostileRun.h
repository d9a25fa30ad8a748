#pragma once

#include <TSAL/Methods.h>

#include <bit>
#include <limits>
#include <memory>
#include <string>

/// Records a finished run with everything that is hard to keep, and an event outside of it.
inline void RecordHostileRun(const std::string& node) {
  using namespace Quor::TolvaServices;
  using namespace Quor::TolvaServices::Types;
  using std::string_literals::operator""s;
  const auto& session = SessionHandle::Empty;
  const std::string hostile = node + "\0\xff\"'\\\n,<script>"s;
  const Tsid configuration =
      Methods::SystemMethods::SaveInstrumentConfigWithResult(hostile, "", "", "", "", "", "", "", "").ConfigurationId;
  ActivityExecution run;
  run.Node = hostile;
  run.ActivityVersion.Id = Tsid("01234567-89ab-4def-8123-456789abcdef");
  run.ActivityVersion.Name = hostile;
  Methods::ActivityMethods::SaveActivityExecution(run, session);
  InstrumentEvent event{hostile, {}, {std::make_shared<InstrumentParameterString>(hostile, hostile)}, {}, {}};
  using Double = std::numeric_limits<double>;
  for (const double number : {0.1, 0.0, -0.0, 1e22, Double::infinity(), -Double::infinity(), Double::denorm_min(),
                              Double::max(), 5e15, std::bit_cast<double>(0x7ff8000000000001U)}) {
    event.Parameters.push_back(std::make_shared<InstrumentParameterDouble>("number", number));
  }
  event.Parameters.push_back(std::make_shared<InstrumentParameterBoolean>("bool", true));
  Methods::LoggingMethods::SaveEvent(event, configuration, &run.Id, false, session);
  Methods::LoggingMethods::SaveEvent(event, Tsid(), nullptr, false, session);
  run.Status = {Enums::ActivityExecStatus::Done, DateTimeOffset::Now()};
  Methods::ActivityMethods::SaveActivityExecution(run, session);
}
