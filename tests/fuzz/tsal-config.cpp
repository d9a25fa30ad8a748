// TSAL.config: a database and an instrument, or what is wrong in which line.

#include "Xml.h"
#include "store/settings/Settings.h"

#include <filesystem>

namespace fs = std::filesystem;
using namespace Velora::Store;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return ReadTwice(
      "TSAL.config", std::string(data, data + size),
      [](const std::string& file) { return ReadSettings(fs::path(file).parent_path().string()); },
      [](const Settings& settings) {
        Require(!settings.instrument.empty(), "a record says which instrument");
        const bool isFile = settings.database.kind == Database::Kind::Sqlite;
        const std::string& where = settings.database.where;
        Require(!isFile || fs::path(where).is_absolute(), "a session keeps its database: " + where);
        std::string units;
        for (const auto& [parameter, unit] : settings.units) {
          units += "<Unit" + Attribute("Parameter", parameter) + Attribute("Text", unit) + "/>";
        }
        return "<TSAL" + Attribute("Instrument", settings.instrument) + "><Database" +
               Attribute("Backend", isFile ? "sqlite3" : "postgresql") + Attribute("Connection", where) + "/>" + units +
               "</TSAL>";
      });
}
