#pragma once

#include "store/settings/Settings.h"

#include <string>

namespace Velora::Store {

/// The result of a trial recording.
struct Trial {
  int version = 0;     ///< The version of the store's schema; 0 if there is no store yet.
  std::string words;   ///< What was tried, for a person.
  std::string newest;  ///< When the newest session of the store began; empty if there is none.
};

/// Opens the database as a session does, and saves what hosts save, in a transaction that is rolled back. No store is
/// made or upgraded, and nothing is left.
/// @throws Error with the reason why a host could not record.
Trial TryToRecord(const Settings& settings);

}  // namespace Velora::Store
