#pragma once

#include "store/database/Database.h"

#include <map>
#include <optional>
#include <string>

namespace Velora::Store {

/// The content of "TSAL.config".
struct Settings {
  std::string instrument;  ///< The name of the instrument in the records.
  Database database;
  std::map<std::string, std::string> units;  ///< Of parameters, by their names. Hosts do not use them.
};

/// Reads "TSAL.config" in a folder.
/// @param folder empty for the current directory.
/// @throws Error, naming file and line, when the file cannot be used.
Settings ReadSettings(const std::string& folder);

/// Reads in "TSAL.config" in a folder to which store `velora-ts forward` takes what hosts record there. Hosts do not
/// ask for it.
/// @return nothing if it names none.
/// @throws Error, naming file and line, when the file cannot be used.
std::optional<Database> ReadFacility(const std::string& folder);

}  // namespace Velora::Store
