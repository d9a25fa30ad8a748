#pragma once

#include "store/soundness/Soundness.h"

namespace Velora::Store {

// The checks of Soundness.h for a database on a server.

Findings PostgreSqlSchemaFindings(const Reader& store);
std::vector<std::string> PostgreSqlDamageFindings(const Reader& store);

/// Partitions that hosts should have made by now. Without the partition of its month, a host cannot record.
std::vector<std::string> MissingPartitions(const Reader& store);

}  // namespace Velora::Store
