#pragma once

#include "asking/KeptTrends.h"
#include "store/asking/EventWindow.h"
#include "store/database/Database.h"

#include <mutex>
#include <string>
#include <vector>

namespace Velora::Ts {

struct OpenStore;
struct TrendPart;

/// How the numbers of a parameter changed over time.
struct TrendQuestion {
  std::string parameter;      ///< Its name, as stored.
  Store::EventWindow window;  ///< Of the events; one of no run.
  std::string by;             ///< "instrument" or "activity"; empty for one group.
};

/// A store that is asked.
struct TrendStore {
  int number = 1;  ///< In the answer.
  Store::Database database;
};

/// Answers questions about trends.
class Trends {
 public:
  /// A JSON object without its closing brace: the numbers of all stores together, in some groups, each divided into
  /// equal parts of the time. Minimum, maximum and count are exact; "quantile_error" says by how much of the numbers of
  /// a part, at most, the place of a quantile differs. Of several stores, one that cannot be read is left out, and one
  /// whose records are also in another. Can be called by several threads.
  /// @throws Store::Error when no store can be read.
  std::string Answer(const std::vector<TrendStore>& stores, const TrendQuestion& question);

  /// Reads some of the numbers of a parameter, so that the first answer need not; those of a store with few events are
  /// not read. Can be called by several threads. @return whether there was something to read.
  /// @throws Store::Error when the store cannot be read.
  bool ReadAhead(const TrendStore& store, const std::string& parameter);

 private:
  bool ReadKept(OpenStore& store, const TrendQuestion& question, std::vector<TrendPart>& parts);

  std::mutex mutex;
  KeptTrends kept;  // guarded by the mutex
};

}  // namespace Velora::Ts
