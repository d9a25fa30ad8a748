#include "soundness/ExpectedSchema.h"

#include "SqliteSchema.h"

#include <soci/soci.h>
#include <soci/sqlite3/soci-sqlite3.h>

namespace Velora::Ts {

std::map<std::string, std::string> ExpectedSchema(int version) {
  soci::session sql(soci::sqlite3, ":memory:");
  Quor::TolvaServices::Local::BringUpSqliteSchema(sql, 0, version);
  std::map<std::string, std::string> expected;
  const soci::rowset<soci::row> rows = (sql.prepare << schemaObjects);
  for (const soci::row& row : rows) {
    expected.emplace(row.get<std::string>(0), row.get<std::string>(1));
  }
  return expected;
}

}  // namespace Velora::Ts
