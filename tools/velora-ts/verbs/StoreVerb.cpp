#include "verbs/StoreVerb.h"

namespace Velora::Ts {

using namespace Store;

StoreVerb::StoreVerb(Options& options) {
  options.AddText("--config", folder, "Folder with TSAL.config. Default: the current directory", "FOLDER");
}

Settings StoreVerb::StoreSettings() const { return ReadSettings(folder); }

}  // namespace Velora::Ts
