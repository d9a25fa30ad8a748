#pragma once

#include "store/reading/Rows.h"

#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace Velora::Store {

class Reader;

/// A run: an execution without a parent, with everything below it. Its texts are as stored.
struct Run {
  long long root = 0;  ///< Key of the execution without a parent, the root.
  std::string guid;
  std::string node;
  std::string startedAt;
};

/// The runs that started at or after one time and before another, in this order.
std::vector<Run> RunsBetween(const Reader& store, const std::string& from, const std::string& before);

/// The runs that match a name: a guid, the first characters of one, "last" for the run recorded last, or a node.
/// @param most so many of them, the oldest, are enough.
std::vector<Run> RunsNamed(const Reader& store, const std::string& name,
                           long long most = std::numeric_limits<long long>::max());

/// The run with this root. @throws Error when there is none.
Run RunOf(const Reader& store, long long root);

/// The number of characters of a guid that mostly identify a run.
inline constexpr std::size_t shortGuid = 8;
/// The first characters of a run's guid, at least so many, and as many as no other run begins with.
std::string ShortGuid(const Reader& store, const std::string& guid);

/// A column in a query for runs e: how many runs begin with the same characters, `shortGuid` of them.
extern const char* const runsWithSameLetters;

/// Finds the time of the last status or event of a run.
class LastRecords {
 public:
  explicit LastRecords(const Reader& store);
  std::string Of(const Run& run);

 private:
  Rows rows;
};

/// The same for one run.
std::string LastRecorded(const Reader& store, const Run& run);

}  // namespace Velora::Store
