#pragma once

#include "store/database/Cursor.h"

#include <string>
#include <vector>

namespace Velora::Store {

class Writer;

/// An activity version and its activity. Texts are in their stored form.
struct ActivityVersionRow {
  long long key = 0;
  std::string guid;  ///< Empty for a new one.
  std::string name;
  std::string version;
  std::string description;
  std::string activityGuid;  ///< Empty for a new one.
  std::string activityName;
  std::string activityDescription;
};

/// That a session registered the versions of a file.
struct Registration {
  long long session = 0;
  std::string file;
  std::string at;
};

/// What a statement selects to read versions with ReadVersionRow().
inline constexpr const char* versionColumns =
    "v.version_id, v.guid, v.name, v.version, v.description, a.guid, a.name, a.description";
ActivityVersionRow ReadVersionRow(const Cursor& rows);

/// The key of the version with these texts, which is added if there is none. Within a transaction that holds the
/// activities.
long long FindOrAddVersion(Writer& store, const ActivityVersionRow& version);

/// Does what Writer::Register() does, with a few statements for each version.
std::vector<ActivityVersionRow> RegisterOneByOne(Writer& store, const Registration& registration,
                                                 const std::vector<ActivityVersionRow>& versions);

}  // namespace Velora::Store
