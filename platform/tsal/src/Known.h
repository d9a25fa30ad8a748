#pragma once

#include "Recent.h"

#include <TSAL/Types.h>

#include <memory>
#include <optional>
#include <string>

namespace Quor::TolvaServices::Local {

struct VersionRecord {
  long long row = 0;
  Types::ActivityVersion version;
};

/// What an execution is first saved as, and stays.
struct ExecutionRecord {
  long long row = 0;
  std::optional<long long> parent;
  long long root = 0;
  std::shared_ptr<const VersionRecord> version;  // null for none
  std::string node;
  std::string description;
  int kind = 0;
};

/// What was learned over a connection and never changes, because rows are only ever added: so only what is committed,
/// and never a status. Another connection can lead to another store, so it begins with nothing known.
///
/// A host uses a few executions at a time, so a few hundred are enough. Texts can be of any length: records with more
/// than 2,048 characters are not kept, but read each time, so that all this takes less than 2 MB.
class Known {
 public:
  // Null for what is not known.
  std::shared_ptr<const ExecutionRecord> Execution(const std::string& guid) { return executions.Find(guid); }
  std::shared_ptr<const VersionRecord> Version(const std::string& guid) { return versions.Find(guid); }
  std::shared_ptr<const long long> Configuration(const std::string& guid) { return configurations.Find(guid); }

  // Called after a commit, too, which must stay a success. So they never throw, and what cannot be kept is not.
  void Keep(const std::string& guid, std::shared_ptr<const ExecutionRecord> execution) noexcept;
  void Keep(const std::string& guid, std::shared_ptr<const VersionRecord> version) noexcept;
  void KeepConfiguration(const std::string& guid, long long row) noexcept;

 private:
  Recent<ExecutionRecord> executions;
  Recent<VersionRecord> versions;
  Recent<long long> configurations;
};

}  // namespace Quor::TolvaServices::Local
