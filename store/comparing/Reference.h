#pragma once

#include "store/reading/Runs.h"

#include <optional>
#include <string>

namespace Velora::Store {

/// The run with which another one is compared if nobody says with which.
struct Reference {
  std::string activity, instrument;  ///< Of both runs, as stored.
  std::optional<Run> run;            ///< Nothing if there is none.
};

/// The newest finished run of the same topmost activity, whatever its version, and of the same instrument that started
/// before a run.
/// @param store in which it is looked for; can be another one than that of the run.
Reference ReferenceOf(const Reader& storeOfRun, const Run& run, const Reader& store);

}  // namespace Velora::Store
