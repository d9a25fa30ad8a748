#pragma once

#include "soundness/Soundness.h"

namespace Velora::Ts {

// What Soundness.h asks for, of a database on a server.

Findings PostgreSqlSchemaFindings(const Store& store);
std::vector<std::string> PostgreSqlDamageFindings(const Store& store);

/// Partitions that hosts should have made by now. A host that finds none for its month cannot record.
std::vector<std::string> MissingPartitions(const Store& store);

}  // namespace Velora::Ts
