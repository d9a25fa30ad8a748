#include "StoredConfigurations.h"

#include "Connection.h"
#include "Guid.h"
#include "Statement.h"
#include "StoredText.h"
#include "StoredTime.h"

#include <algorithm>

namespace Quor::TolvaServices::Local {

Types::InstrumentEventConfigResult StoreConfiguration(Connection& connection, long long session,
                                                      const std::string& sessionGuid, const ConfigurationTexts& texts) {
  ConfigurationTexts stored;
  std::transform(texts.begin(), texts.end(), stored.begin(), ToStoredText);
  const std::string guid = NewGuid();
  Types::InstrumentEventConfigResult result;
  result.ConfigurationId = Types::Tsid(guid);
  result.SessionId = Types::Tsid(sessionGuid);
  result.Time = Types::DateTimeOffset::Now();
  const std::string savedAt = ToStoredTime(result.Time);
  Transaction transaction(connection);
  soci::statement insert(connection.Sql());
  insert.exchange(soci::use(guid));
  insert.exchange(soci::use(session));
  insert.exchange(soci::use(savedAt));
  for (const std::string& text : stored) {
    insert.exchange(soci::use(text));
  }
  insert.alloc();
  insert.prepare(
      "INSERT INTO configurations (guid, session_id, saved_at, configuration_text, text2, vendor_name, host_name, "
      "option_text, instrument_class, model_name, text8, text9) "
      "VALUES (:guid, :session, :at, :t1, :t2, :t3, :t4, :t5, :t6, :t7, :t8, :t9)",
      soci::details::st_one_time_query);
  insert.define_and_bind();
  insert.execute(true);
  transaction.Commit();
  return result;
}

std::optional<long long> ConfigurationRow(soci::session& sql, const Types::Tsid& id) {
  if (id == Types::Tsid()) {
    return std::nullopt;
  }
  const std::string guid = GuidOf(id, "instrument configuration");
  long long row = 0;
  if (!Execute(sql, "SELECT configuration_id FROM configurations WHERE guid = :guid", soci::use(guid),
               soci::into(row))) {
    throw TsError("instrument configuration '" + guid + "' is not known to this TS; expected one that it has stored");
  }
  return row;
}

}  // namespace Quor::TolvaServices::Local
