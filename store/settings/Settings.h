#pragma once

#include "store/database/Database.h"

#include <string>

namespace Velora::Store {

/// What "TSAL.config" says.
struct Settings {
  std::string instrument;  ///< Under whose name a session's records stand.
  Database database;
};

/// Reads "TSAL.config" in a folder.
/// @param folder empty for the current directory.
/// @throws Error naming file and line when the file cannot be used.
Settings ReadSettings(const std::string& folder);

}  // namespace Velora::Store
