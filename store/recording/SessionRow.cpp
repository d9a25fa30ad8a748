#include "store/recording/SessionRow.h"

#include "store/recording/Writer.h"
#include "store/values/StoredText.h"
#include "store/values/StoredTime.h"

#include <VeloraSystem/System.h>

namespace Velora::Store {

long long InsertSession(Writer& store, const std::string& guid, const std::string& instrument,
                        const std::array<std::string, 3>& texts) {
  store.ExpectToBeRecordedInto();
  return store.Sql()
      .Find<long long>(
          "INSERT INTO sessions (guid, instrument, host, began_at, text1, text2, text3) "
          "VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7) RETURNING session_id",
          guid, ToStoredText(instrument), ToStoredText(System::ComputerName()), ToStoredTime(Now()),
          ToStoredText(texts[0]), ToStoredText(texts[1]), ToStoredText(texts[2]))
      .value();
}

}  // namespace Velora::Store
