#pragma once

#include "page/writer/Column.h"
#include "store/reading/Rows.h"

#include <set>
#include <string>

namespace Velora::Page {

/// The executions of a run with their statuses, as columns of the page's data.
class ExecutionBatches {
 public:
  /// @param start the time from which times are counted, in microseconds since 1970.
  ExecutionBatches(const Store::Reader& store, long long root, long long start);

  /// Appends the next batch. @return whether there was one.
  bool AppendBatch(std::string& json);

  /// The keys of the records to which the executions so far refer.
  const std::set<long long>& Sessions() const { return sessions; }
  const std::set<long long>& Versions() const { return versions; }

 private:
  void AddOne();
  void AddStatuses(long long execution, std::optional<long long> startedAt);

  Store::Rows rows;  // one for each status, or one for an execution without any
  bool more;
  const long long start;
  Column number, parent, session, version, started, node, description;
  Column statuses, statusAt;  // the codes of each execution, and the times of all statuses since its start
  std::set<long long> sessions, versions;
};

}  // namespace Velora::Page
