#pragma once

#include "store/reading/Rows.h"
#include "store/reading/Runs.h"
#include "store/record/Records.h"
#include "store/record/Seals.h"

#include <optional>

namespace Velora::Store {

class Reader;

// What is not sealed yet.

/// Reads runs one by one, in the order of their recording, with what sealing needs to know of each.
class RunStates {
 public:
  /// Reads all runs.
  explicit RunStates(const Reader& store);
  /// Reads the runs that have records behind these numbers, and those that are not finished.
  RunStates(const Reader& store, const Numbers& since);

  /// Goes to the next run. @return whether there is one.
  bool Next();
  const Run& Current() const { return run; }
  /// How far the run is sealed.
  const Numbers& SealedUpTo() const { return sealedUpTo; }
  bool HasSeal() const { return sealed; }
  bool IsUnfinished() const { return unfinished; }

 private:
  Rows rows;
  Run run;
  Numbers sealedUpTo = none;
  bool sealed = false;
  bool unfinished = false;
};

/// Asks for records that are not sealed.
class UnsealedRecords {
 public:
  explicit UnsealedRecords(const Reader& store);

  /// Whether a run has records behind these numbers.
  bool IsIn(long long root, const Numbers& since);
  /// Whether there are records of no run behind these numbers.
  bool IsInNoRun(const Numbers& since);

 private:
  const Reader& store;
  Rows ofRun, ofNoRun;
};

/// Whether the runs that RunStates reads since the end of a chain are all that can have something to seal. They are not
/// if rows were inserted later under numbers that the chain covers, or if its last seals were deleted: then the store
/// has more rows than those that are sealed and those of these runs. The store must have this version of the schema.
bool OnlyLaterRunsHaveMore(const Reader& store, const Chain& chain);

}  // namespace Velora::Store
