#pragma once

#include "store/reading/Rows.h"
#include "store/reading/Runs.h"
#include "store/record/Records.h"
#include "store/record/Seals.h"

#include <functional>
#include <optional>
#include <string_view>

namespace Velora::Store {

class Reader;

/// Writes again what each seal of one chain covers, seal after seal.
class SealedContents {
 public:
  /// @param origin the number of the store that sealed.
  /// @param after begins with the seal after this one.
  /// @param sink gets each line.
  SealedContents(const Reader& store, long long origin, long long after, std::function<void(std::string_view)> sink);

  /// Writes the lines of the next seal. @return whether there is one.
  bool Next();
  const Seal& Current() const { return seals.Current(); }
  /// The line of the seal itself.
  const std::string& Line() const { return seals.Line(); }
  /// The run of the seal; nothing if it is missing, or if the seal is about what belongs to no run.
  const std::optional<Run>& OfRun() const { return run; }
  /// How many records of each kind were written for the seal.
  const PerKind& Counts() const { return records.Counts(); }

 private:
  const Reader& store;
  const KeyRange ofOrigin;
  const long long shift;
  SealRows seals;
  Records records;
  Rows ofRunBefore;
  std::optional<Run> run;
  PerKind ofNoRun = none;
};

}  // namespace Velora::Store
