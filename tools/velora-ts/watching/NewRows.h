#pragma once

#include "store/reading/KnownStores.h"
#include "watching/Heads.h"

#include <chrono>
#include <map>
#include <string>
#include <vector>

namespace Velora::Ts {

/// What was recorded of a run between two states of a store.
struct NewOfRun {
  long long events = 0;
  long long lastEvent = 0;  ///< The highest key of these; 0 for none.
  std::string lastAt;       ///< The newest time of any of these rows.
  bool moved = false;       ///< Whether executions or statuses are among them.
  bool isNew = false;       ///< Whether its topmost execution is.
};

struct NewRows {
  std::map<long long, NewOfRun> runs;         ///< By the keys of their roots.
  std::map<long long, std::string> sessions;  ///< The newest time of what each recorded, by its key.
  std::vector<Store::KeyRange> events;        ///< The keys of the new events, and of others.
};

/// Finds what was recorded since the look before. On a server a row can become visible after rows with higher keys, so
/// what is newest there is asked for again for some time.
class RecordedSince {
 public:
  /// Begins with a state: what is new comes after it.
  void Begin(const Store::Reader& store, const Heads& heads);
  /// Whether it is time to ask again for what is newest.
  bool IsDueAgain(const Store::Reader& store, const Heads& heads) const;
  /// What is new in a state that follows the one before.
  NewRows In(const Store::Reader& store, const Heads& heads);

 private:
  using Counts = std::map<long long, long long>;  // of events, by the roots of their runs
  void AskAgain(const Store::Reader& store, const Head& now, NewRows& rows);

  Heads seen;
  Head floor, middle;    // of the store itself: what is newer than the floor is asked for again
  Counts older, recent;  // what was counted from the floor to the middle, and from there on
  std::chrono::steady_clock::time_point asked{};
};

}  // namespace Velora::Ts
