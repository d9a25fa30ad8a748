#include "Settings.h"

#include "XmlFile.h"

#include <TSAL/Error.h>
#include <VeloraSystem/System.h>

#include <filesystem>
#include <iterator>
#include <system_error>

namespace Quor::TolvaServices::Local {

Settings ReadSettings(const std::string& folder) {
  // Absolute, since a session keeps its database when the current directory changes.
  std::error_code error;
  const std::filesystem::path file = std::filesystem::absolute(std::filesystem::path(folder) / "TSAL.config", error);
  if (error) {
    throw TsError("file 'TSAL.config' cannot be found: the current directory is unknown: " + error.message());
  }
  const XmlFile xml(file.string(), "TSAL");
  xml.ExpectAttributes(xml.Root(), {"Instrument"});
  xml.ExpectElements(xml.Root(), "Database");
  const auto databases = xml.Root().children("Database");
  if (std::distance(databases.begin(), databases.end()) != 1) {
    xml.Fail(databases.begin() == databases.end() ? xml.Root() : *std::next(databases.begin()),
             "expected one element 'Database' in 'TSAL'");
  }
  const pugi::xml_node database = *databases.begin();
  xml.ExpectAttributes(database, {"Backend", "Connection"});
  xml.ExpectElements(database, "");
  const std::string backend = xml.Required(database, "Backend");
  if (backend != "sqlite3") {
    xml.Fail(database, "unknown Backend '" + backend + "'; expected 'sqlite3'");
  }
  const std::string instrument = xml.Root().attribute("Instrument").value();
  return {instrument.empty() ? Velora::System::ComputerName() : instrument,
          (file.parent_path() / xml.Required(database, "Connection")).string()};
}

}  // namespace Quor::TolvaServices::Local
