#pragma once

#include "StoredParameter.h"

#include <TSAL/Types.h>

#include <soci/soci.h>

#include <optional>
#include <string>

namespace Quor::TolvaServices::Local {

/// The two statements that store an event, prepared once for a connection: recording events is what a host does most.
class SqliteEvents {
 public:
  explicit SqliteEvents(soci::session& sql);
  SqliteEvents(const SqliteEvents&) = delete;
  SqliteEvents& operator=(const SqliteEvents&) = delete;

  /// Inserts an event and its parameters. To be called in a transaction.
  void Insert(const Types::InstrumentEvent& event, long long session, std::optional<long long> execution,
              std::optional<long long> configuration);

 private:
  void Insert(StoredParameter parameter);

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
