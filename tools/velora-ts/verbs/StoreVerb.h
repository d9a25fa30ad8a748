#pragma once

#include "store/reading/Reader.h"
#include "verbs/Verb.h"

#include <string>

namespace Velora::Ts {

/// A verb for the store that the TSAL.config of a folder names.
class StoreVerb : public Verb {
 protected:
  explicit StoreVerb(Options& options);

  const std::string& Folder() const { return folder; }
  /// @throws Error when TSAL.config cannot be read or is wrong.
  Store::Database Database() const;

 private:
  std::string folder;
};

}  // namespace Velora::Ts
