#include "verbs/StoreVerb.h"

namespace Velora::Ts {

StoreVerb::StoreVerb(Options& options) {
  options.AddText("--config", folder, "Folder where TSAL.config lies. Default: the current directory");
}

Store::Database StoreVerb::Database() const { return Quor::TolvaServices::Local::ReadSettings(folder).database; }

}  // namespace Velora::Ts
