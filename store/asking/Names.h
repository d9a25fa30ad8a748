#pragma once

#include <optional>
#include <string>
#include <vector>

namespace Velora::Store {

class Reader;

/// What has a name.
enum class Named { Parameter, Event };

/// The time of the newest event that has a name, or a parameter of that name. It is looked for from the newest event
/// on.
/// @param name as stored.
std::optional<std::string> NewestTimeOf(const Reader& store, Named kind, const std::string& name);

/// The names in a store that differ least from another one. Reads the names of the whole store.
/// @return three of them, or fewer if there are no more; as stored.
std::vector<std::string> NearestNames(const Reader& store, Named kind, const std::string& name);

}  // namespace Velora::Store
