#include "SqliteSchema.h"

#include "Schema.h"
#include "Statement.h"

#include <soci/soci.h>

namespace Quor::TolvaServices::Local {

void BringUpSqliteSchema(soci::session& sql, int from, int to) {
  for (const std::string& statement : Velora::Store::SqliteSchema(from, to)) {
    Execute(sql, statement);
  }
  AddVersion(sql, to);
}

}  // namespace Quor::TolvaServices::Local
