#pragma once

#include "store/reading/KnownStores.h"

namespace Velora::Store {

/// The keys among which the events of a run are: all that are given, or fewer. For each execution anew, a server plans
/// a question for the partition of every month among the keys, which takes longer than the answer when there are years.
/// @param root the key of the root of the run.
KeyRange EventKeysOf(const Reader& store, long long root, const KeyRange& all);

/// The same, with all keys of the store that the run is from.
KeyRange EventKeysOf(const Reader& store, long long root);

}  // namespace Velora::Store
