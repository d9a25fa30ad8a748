#include "store/settings/Settings.h"

#include "store/database/PostgreSqlAddress.h"
#include "store/settings/XmlFile.h"

#include <VeloraSystem/Failure.h>
#include <VeloraSystem/Path.h>
#include <VeloraSystem/System.h>
#include "store/Error.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace Velora::Store {
namespace {

std::vector<XmlElement> ElementsNamed(const std::string& name, const XmlFile& xml) {
  std::vector<XmlElement> named;
  std::copy_if(xml.Elements().begin(), xml.Elements().end(), std::back_inserter(named),
               [&name](const XmlElement& element) { return element.name == name; });
  return named;
}

// The library's reason is left out: it can contain a password.
void ExpectPostgreSqlAddress(const XmlFile& xml, const XmlElement& element) {
  if (!IsPostgreSqlAddress(element.Value("Connection"))) {
    xml.Fail(element,
             "PostgreSQL does not understand this Connection; expected 'KEYWORD=VALUE ...', 'service=NAME' or a URI");
  }
}

// Relative paths of a file begin in the folder of the settings.
Database DatabaseIn(const XmlFile& xml, const std::string& settings) {
  const std::vector<XmlElement> databases = ElementsNamed("Database", xml);
  if (databases.size() != 1) {
    xml.Fail(databases.empty() ? xml.Elements().front() : databases[1], "expected one element 'Database' in 'TSAL'");
  }
  const XmlElement& database = databases.front();
  const std::string backend = xml.Required(database, "Backend");
  const std::string connection = xml.Required(database, "Connection");
  if (backend == "sqlite3") {
    return {Database::Kind::Sqlite, System::Joined(System::TextOf(System::PathOf(settings).parent_path()), connection)};
  }
  if (backend == "postgresql") {
    ExpectPostgreSqlAddress(xml, database);
    return {Database::Kind::PostgreSql, connection};
  }
  xml.Fail(database, "unknown Backend '" + backend + "'; expected 'sqlite3' or 'postgresql'");
}

// Its address is not checked: hosts do not need it, and must not load PostgreSQL's client library for it.
std::optional<XmlElement> ForwardIn(const XmlFile& xml, const Database& database) {
  const std::vector<XmlElement> elements = ElementsNamed("Forward", xml);
  if (elements.empty()) {
    return std::nullopt;
  }
  if (elements.size() > 1) {
    xml.Fail(elements[1], "a second 'Forward'; expected at most one");
  }
  static_cast<void>(xml.Required(elements.front(), "Connection"));
  if (database.kind != Database::Kind::Sqlite) {
    xml.Fail(elements.front(), "'Forward' beside Backend=\"postgresql\"; expected it beside Backend=\"sqlite3\"");
  }
  return elements.front();
}

std::map<std::string, std::string> UnitsIn(const XmlFile& xml) {
  std::map<std::string, std::string> units;
  for (const XmlElement& element : ElementsNamed("Unit", xml)) {
    const std::string parameter = xml.Required(element, "Parameter");
    if (!units.emplace(parameter, xml.Required(element, "Text")).second) {
      xml.Fail(element, "a second 'Unit' has the Parameter '" + parameter + "'; expected one for each parameter");
    }
  }
  return units;
}

// Absolute, so that a session keeps its database when the current directory changes.
std::string SettingsIn(const std::string& folder) {
  try {
    return System::Absolute(System::Joined(folder, "TSAL.config"));
  } catch (const System::Failure& failure) {
    throw Error(std::string("file 'TSAL.config' cannot be found: the current directory is unknown: ") + failure.what());
  }
}

XmlFile OpenSettings(const std::string& file) {
  return {file,
          {{{"TSAL", {"Instrument"}}},
           {{"Database", {"Backend", "Connection"}}, {"Forward", {"Connection"}}, {"Unit", {"Parameter", "Text"}}}}};
}

}  // namespace

Settings ReadSettings(const std::string& folder) {
  const std::string file = SettingsIn(folder);
  const XmlFile xml = OpenSettings(file);
  Settings settings;
  const std::string given = xml.Elements().front().Value("Instrument");
  settings.instrument = given.empty() ? System::ComputerName() : given;
  settings.database = DatabaseIn(xml, file);
  static_cast<void>(ForwardIn(xml, settings.database));
  settings.units = UnitsIn(xml);
  return settings;
}

std::optional<Database> ReadFacility(const std::string& folder) {
  const std::string file = SettingsIn(folder);
  const XmlFile xml = OpenSettings(file);
  const std::optional<XmlElement> forward = ForwardIn(xml, DatabaseIn(xml, file));
  if (!forward) {
    return std::nullopt;
  }
  ExpectPostgreSqlAddress(xml, *forward);
  return Database{Database::Kind::PostgreSql, forward->Value("Connection")};
}

}  // namespace Velora::Store
