#include "PostgreSqlSchema.h"

#include "Statement.h"

#include <soci/soci.h>

#include <string>

namespace Quor::TolvaServices::Local {

void BringUpPostgreSqlSchema(soci::session& sql, int from, int to) {
  std::string schema;
  Execute(sql, "SELECT quote_ident(current_schema())", soci::into(schema));
  Execute(sql, Velora::Store::PostgreSqlSchema(schema, from, to));
  AddVersion(sql, to);
}

}  // namespace Quor::TolvaServices::Local
