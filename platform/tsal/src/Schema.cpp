#include "Schema.h"

#include "Statement.h"
#include "StoredTime.h"

#include <soci/soci.h>

#include <string>

namespace Quor::TolvaServices::Local {

void AddVersion(soci::session& sql, int version) {
  const std::string now = ToStoredTime({});
  Execute(sql, "INSERT INTO ts_schema (version, created_at) VALUES (:version, :created)", soci::use(version),
          soci::use(now));
}

}  // namespace Quor::TolvaServices::Local
