#include "verbs/StoreVerb.h"

#include "store/settings/Settings.h"

namespace Velora::Ts {

using namespace Store;

StoreVerb::StoreVerb(Options& options) {
  options.AddText("--config", folder, "Folder with TSAL.config. Default: the current directory");
}

Store::Database StoreVerb::Database() const { return Store::ReadSettings(folder).database; }

}  // namespace Velora::Ts
