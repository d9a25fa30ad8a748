// TSAL.config: a database and an instrument, or what is wrong in which line.

#include "Settings.h"
#include "Xml.h"

#include <filesystem>

namespace fs = std::filesystem;
using namespace Quor::TolvaServices::Local;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return ReadTwice(
      "TSAL.config", std::string(data, data + size),
      [](const std::string& file) { return ReadSettings(fs::path(file).parent_path().string()); },
      [](const Settings& settings) {
        Require(!settings.instrument.empty(), "a record says which instrument");
        Require(fs::path(settings.database).is_absolute(), "a session keeps its database: " + settings.database);
        return "<TSAL" + Attribute("Instrument", settings.instrument) + "><Database Backend=\"sqlite3\"" +
               Attribute("Connection", settings.database) + "/></TSAL>";
      });
}
