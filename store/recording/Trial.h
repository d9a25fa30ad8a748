#pragma once

#include "store/settings/Settings.h"

#include <string>

namespace Velora::Store {

/// What came of trying to record.
struct Trial {
  int version = 0;     ///< Of the store's schema; 0 where there is no store yet.
  std::string words;   ///< What was tried, in words.
  std::string newest;  ///< When the newest session of the store began; empty for none.
};

/// Opens the database as a session does, and saves what hosts save, in one transaction that is rolled back: nothing is
/// made, brought up, or left behind.
/// @throws Error with what a host would be told, and more where it would be told nothing.
Trial TryToRecord(const Settings& settings);

}  // namespace Velora::Store
