#pragma once

#include <TSAL/Types.h>

#include <soci/soci.h>

#include <optional>
#include <string>

namespace Quor::TolvaServices::Local {

/// The two statements that store an event, prepared once for a connection: recording events is what a host does most.
class EventStatements {
 public:
  explicit EventStatements(soci::session& sql);
  EventStatements(const EventStatements&) = delete;
  EventStatements& operator=(const EventStatements&) = delete;

  /// Inserts an event and its parameters. To be called in a transaction.
  void Insert(const Types::InstrumentEvent& event, long long session, std::optional<long long> execution,
              std::optional<long long> configuration);

 private:
  void InsertParameter(const Types::InstrumentParameterBase& parameter);
  void SetNumber(double number);
  void SetText(std::string text);

  soci::session& sql;

  // What the statements are bound to.
  long long sessionId = 0;
  long long executionId = 0;
  long long configurationId = 0;
  soci::indicator executionKnown = soci::i_null;
  soci::indicator configurationKnown = soci::i_null;
  std::string eventName;
  std::string eventTime;
  long long eventId = 0;
  int position = 0;
  std::string name;
  std::string kind;
  std::string text;
  double number = 0;
  soci::indicator hasText = soci::i_null;
  soci::indicator hasNumber = soci::i_null;

  soci::statement insertEvent;
  soci::statement insertParameter;
};

}  // namespace Quor::TolvaServices::Local
