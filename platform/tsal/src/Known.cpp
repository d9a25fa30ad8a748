#include "Known.h"

#include <utility>

namespace Quor::TolvaServices::Local {
namespace {

constexpr std::size_t longestTexts = 2048;

std::size_t LengthOf(const VersionRecord& record) {
  const Types::ActivityVersion& version = record.version;
  return version.Name.size() + version.Version.size() + version.Description.size() + version.Activity.Name.size() +
         version.Activity.Description.size();
}

std::size_t LengthOf(const ExecutionRecord& record) {
  return record.node.size() + record.description.size() + (record.version ? LengthOf(*record.version) : 0);
}

template <typename Record>
void KeepUnlessLong(Recent<Record>& kept, const std::string& guid, std::shared_ptr<const Record> record) noexcept {
  if (LengthOf(*record) > longestTexts) {
    return;
  }
  try {
    kept.Keep(guid, std::move(record));
  } catch (...) {
    // It is asked for again.
  }
}

}  // namespace

void Known::Keep(const std::string& guid, std::shared_ptr<const ExecutionRecord> execution) noexcept {
  KeepUnlessLong(executions, guid, std::move(execution));
}

void Known::Keep(const std::string& guid, std::shared_ptr<const VersionRecord> version) noexcept {
  KeepUnlessLong(versions, guid, std::move(version));
}

void Known::KeepConfiguration(const std::string& guid, long long row) noexcept {
  try {
    configurations.Keep(guid, std::make_shared<const long long>(row));
  } catch (...) {
    // It is asked for again.
  }
}

}  // namespace Quor::TolvaServices::Local
