#pragma once

#include "store/reading/Rows.h"
#include "store/reading/Runs.h"
#include "store/record/Records.h"
#include "store/record/Seals.h"

#include <optional>

namespace Velora::Store {

class Reader;

// What is not sealed yet.

/// Reads the runs of one store one by one, in the order of their recording, with what sealing needs to know of each,
/// and those of other stores about which it has notes.
class RunStates {
 public:
  /// Reads all runs.
  /// @param origin the number of the store that seals.
  explicit RunStates(const Reader& store, long long origin = thisStore);
  /// Reads the runs that have records behind these numbers, and those that are not finished.
  RunStates(const Reader& store, long long origin, const PerKind& since);

  /// Goes to the next run. @return whether there is one.
  bool Next();
  const Run& Current() const { return run; }
  /// How far the run is sealed.
  const PerKind& SealedUpTo() const { return sealedUpTo; }
  bool HasSeal() const { return sealed; }
  /// Whether the run is not finished. What was added to a run of another store does not wait for its end.
  bool IsUnfinished() const { return unfinished; }

 private:
  const long long origin;
  Rows rows;
  Run run;
  PerKind sealedUpTo = none;
  bool sealed = false;
  bool unfinished = false;
};

/// Asks for records of one store that are not sealed.
class UnsealedRecords {
 public:
  explicit UnsealedRecords(const Reader& store, long long origin = thisStore);

  /// Whether a run has records behind these numbers.
  bool IsIn(long long root, const PerKind& since);
  /// Whether there are records of no run behind these numbers.
  bool IsInNoRun(const PerKind& since);

 private:
  const Reader& store;
  const long long origin;
  Rows ofRun, notes, ofNoRun;
};

/// Whether the runs that RunStates reads since the end of a chain are all that can have something to seal. They are not
/// if rows were inserted later under numbers that the chain covers, or if its last seals were deleted: then the store
/// has more rows than those that are sealed and those of these runs. The database must have this version of the schema.
bool OnlyLaterRunsHaveMore(const Reader& store, const Chain& chain);

}  // namespace Velora::Store
