#include "store/reading/PostgreSqlSource.h"

#include "store/database/PostgreSqlStart.h"

namespace Velora::Store {

PostgreSqlSource::PostgreSqlSource(const std::string& address, const std::string& snapshot)
    : connection(ConnectToServer(address)) {
  connection.RunScript(findStore);
  Begin();
  if (!snapshot.empty()) {
    connection.RunScript("SET TRANSACTION SNAPSHOT " + connection.Quoted(snapshot));
  }
}

void PostgreSqlSource::Begin() {
  connection.RunScript("BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY");
  connection.RunScript("SET LOCAL cursor_tuple_fraction = 1; SET LOCAL jit = off");  // every result is read completely
  connection.RunScript("SET LOCAL extra_float_digits = 1");  // numbers come with all their digits
}

bool PostgreSqlSource::IsStore() {
  return connection.Find<int>("SELECT 1 WHERE to_regclass('ts_schema') IS NOT NULL").has_value();
}

}  // namespace Velora::Store
