#include "verbs/StoreVerb.h"

#include "store/Error.h"

#include <VeloraSystem/Path.h>

#include <filesystem>
#include <system_error>

namespace Velora::Ts {

using namespace Store;

Database StoreAt(const std::string& place) {
  std::error_code unknown;
  const auto kind = std::filesystem::status(System::PathOf(place), unknown).type();
  if (kind == std::filesystem::file_type::directory) {
    return ReadSettings(place).database;
  }
  if (kind == std::filesystem::file_type::not_found) {
    throw Error("there is no TS store '" + place + "'; expected its file, or a folder with its TSAL.config");
  }
  return {Database::Kind::Sqlite, System::Absolute(place)};
}

StoreVerb::StoreVerb(Options& options, With with) {
  options.AddText("--config", folder, "Folder with TSAL.config. Default: the current directory", "FOLDER");
  if (with == With::Store) {
    options.AddText("--with", place,
                    "File of a store, or folder with its TSAL.config, to use in place of the store that TSAL.config "
                    "names. All else stays as TSAL.config says",
                    "FILE");
  }
}

Settings StoreVerb::StoreSettings() const {
  if (!IsOfAnother()) {
    return ReadSettings(folder);
  }
  // An old file can be read where no instrument is.
  std::error_code unknown;
  const bool hasSettings = !folder.empty() || std::filesystem::exists("TSAL.config", unknown);
  Settings settings = hasSettings ? ReadSettings(folder) : Settings();
  settings.database = StoreAt(place);
  return settings;
}

}  // namespace Velora::Ts
