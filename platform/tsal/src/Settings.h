#pragma once

#include <string>

namespace Quor::TolvaServices::Local {

/// What "TSAL.config" says.
struct Settings {
  std::string instrument;  ///< Under whose name a session's records stand.
  std::string database;    ///< Absolute path of the database file.
};

/// Reads "TSAL.config" in a folder.
/// @param folder empty for the current directory.
/// @throws TsError naming file and line when the file cannot be used.
Settings ReadSettings(const std::string& folder);

}  // namespace Quor::TolvaServices::Local
