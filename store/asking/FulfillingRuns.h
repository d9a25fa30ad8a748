#pragma once

#include "store/asking/Condition.h"

#include <set>
#include <string>
#include <vector>

namespace Velora::Store {

class Reader;

/// Tells which runs have an event that fulfils conditions.
class FulfillingRuns {
 public:
  FulfillingRuns(const Reader& store, std::vector<Condition> conditions);

  /// Whether the run with this root has such an event. Reads the run up to the first one.
  bool Has(long long root);
  /// The names in conditions that no event of those read has had.
  const std::set<std::string>& NotMet() const { return notMet; }

 private:
  const Reader& store;
  const std::vector<Condition> conditions;
  std::set<std::string> notMet;
};

}  // namespace Velora::Store
