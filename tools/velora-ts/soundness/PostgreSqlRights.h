#pragma once

#include <string>
#include <vector>

namespace Velora::Ts {

class Store;

/// The tables into which the role of the hosts adds rows, and what it calls with the rights of the store's owner. It
/// seals nothing.
inline constexpr const char* hostTables =
    "sessions, activities, activity_versions, registrations, configurations, executions, statuses, events, parameters";
inline constexpr const char* hostFunctions = "make_partitions()";

/// Rights in a store on a server that go beyond those with which a role of hosts records, or anybody reads.
std::vector<std::string> RightsFindings(const Store& store);

}  // namespace Velora::Ts
