#include "store/settings/Settings.h"

#include "store/database/PostgreSqlAddress.h"
#include "store/settings/XmlFile.h"

#include <VeloraSystem/System.h>
#include "store/Error.h"

#include <filesystem>
#include <system_error>
#include <vector>

namespace Velora::Store {

Settings ReadSettings(const std::string& folder) {
  // Absolute, so that a session keeps its database when the current directory changes.
  std::error_code error;
  const std::filesystem::path file = std::filesystem::absolute(std::filesystem::path(folder) / "TSAL.config", error);
  if (error) {
    throw Error("file 'TSAL.config' cannot be found: the current directory is unknown: " + error.message());
  }
  const XmlFile xml(file.string(), {{"TSAL", {"Instrument"}}, {"Database", {"Backend", "Connection"}}});
  const std::vector<XmlElement>& elements = xml.Elements();
  if (elements.size() != 2) {
    xml.Fail(elements[elements.size() > 2 ? 2 : 0], "expected one element 'Database' in 'TSAL'");
  }
  const XmlElement& database = elements[1];
  const std::string backend = xml.Required(database, "Backend");
  const std::string connection = xml.Required(database, "Connection");
  const std::string given = elements[0].Value("Instrument");
  const std::string instrument = given.empty() ? System::ComputerName() : given;
  if (backend == "sqlite3") {
    return {instrument, {Database::Kind::Sqlite, (file.parent_path() / connection).string()}};
  }
  if (backend == "postgresql") {
    if (!IsPostgreSqlAddress(connection)) {  // the library's reason is left out: it can contain a password
      xml.Fail(database,
               "PostgreSQL does not understand this Connection; expected 'KEYWORD=VALUE ...', 'service=NAME' or a URI");
    }
    return {instrument, {Database::Kind::PostgreSql, connection}};
  }
  xml.Fail(database, "unknown Backend '" + backend + "'; expected 'sqlite3' or 'postgresql'");
}

}  // namespace Velora::Store
