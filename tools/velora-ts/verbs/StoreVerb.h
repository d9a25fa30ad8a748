#pragma once

#include "store/reading/Reader.h"
#include "store/settings/Settings.h"
#include "verbs/Verb.h"

#include <string>

namespace Velora::Ts {

/// The store in a file, or the one that TSAL.config in a folder names.
/// @throws Error when there is no such file or folder, or TSAL.config is wrong.
Store::Database StoreAt(const std::string& place);

/// A verb that works on the store named by TSAL.config in the folder of the option --config.
class StoreVerb : public Verb {
 protected:
  /// What the option --with names.
  enum class With { Store, Nothing };
  /// @param with Store for a verb that can work on another store; Nothing if it gives the option another meaning.
  explicit StoreVerb(Options& options, With with = With::Store);

  /// The value of --config; empty for the current directory.
  const std::string& Folder() const { return folder; }
  /// Whether another store is named than that of TSAL.config.
  bool IsOfAnother() const { return !place.empty(); }
  /// The settings, with the store to work on. Only with --with there can be no TSAL.config.
  /// @throws Error when TSAL.config cannot be read or is wrong, or the store that --with names is not there.
  Store::Settings StoreSettings() const;
  Store::Database Database() const { return StoreSettings().database; }

 private:
  std::string folder, place;
};

}  // namespace Velora::Ts
