#pragma once

#include "store/reading/Reader.h"
#include "store/settings/Settings.h"
#include "verbs/Verb.h"

#include <string>

namespace Velora::Ts {

/// A verb that works on the store named by TSAL.config in the folder of the option --config.
class StoreVerb : public Verb {
 protected:
  explicit StoreVerb(Options& options);

  /// The value of --config; empty for the current directory.
  const std::string& Folder() const { return folder; }
  /// @throws Error when TSAL.config cannot be read or is wrong.
  Store::Settings StoreSettings() const;
  Store::Database Database() const { return StoreSettings().database; }

 private:
  std::string folder;
};

}  // namespace Velora::Ts
