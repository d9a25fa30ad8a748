#include "StoredConfigurations.h"

#include "StoredTimeOf.h"
#include "store/values/Guid.h"
#include "store/values/StoredText.h"

#include <TSAL/Error.h>

#include <algorithm>

namespace Quor::TolvaServices::Local {

using namespace Velora::Store;

Types::InstrumentEventConfigResult StoreConfiguration(OpenStore& store, long long session,
                                                      const std::string& sessionGuid, const ConfigurationTexts& texts) {
  ConfigurationTexts stored;
  std::transform(texts.begin(), texts.end(), stored.begin(), ToStoredText);
  const std::string guid = NewGuid();
  Types::InstrumentEventConfigResult result;
  result.ConfigurationId = Types::Tsid(guid);
  result.SessionId = Types::Tsid(sessionGuid);
  result.Time = Types::DateTimeOffset::Now();
  const std::string savedAt = StoredTimeOf(result.Time);
  Transaction transaction(*store.writer);
  const auto row = std::apply(
      [&](const auto&... text) {
        return store.Sql().Find<long long>(
            "INSERT INTO configurations (guid, session_id, saved_at, configuration_text, text2, vendor_name, "
            "host_name, option_text, instrument_class, model_name, text8, text9) "
            "VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12) RETURNING configuration_id",
            guid, session, savedAt, text...);
      },
      stored);
  transaction.Commit();
  store.known.KeepConfiguration(guid, row.value());
  return result;
}

std::optional<long long> ConfigurationRow(OpenStore& store, const Types::Tsid& id) {
  if (id == Types::Tsid()) {
    return std::nullopt;
  }
  const std::string guid = GuidOf(id.GetGuid(), "instrument configuration");
  if (const auto known = store.known.Configuration(guid)) {
    return *known;
  }
  const auto row = store.Sql().Find<long long>("SELECT configuration_id FROM configurations WHERE guid = ?1", guid);
  if (!row) {
    throw TsError("instrument configuration '" + guid + "' is not known to this TS; expected one that it has stored");
  }
  store.known.KeepConfiguration(guid, *row);
  return row;
}

}  // namespace Quor::TolvaServices::Local
