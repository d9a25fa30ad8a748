#pragma once

#include "store/soundness/Soundness.h"

namespace Velora::Store {

// What Soundness.h asks for, of a database on a server.

Findings PostgreSqlSchemaFindings(const Reader& store);
std::vector<std::string> PostgreSqlDamageFindings(const Reader& store);

/// Partitions that hosts should have made by now. A host that finds none for its month cannot record.
std::vector<std::string> MissingPartitions(const Reader& store);

}  // namespace Velora::Store
