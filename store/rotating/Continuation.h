#pragma once

#include <optional>
#include <string>

namespace Velora::Store {

class Reader;
struct Continued;

/// The guid of a store in a file, and the hash of its newest seal: what the store that continues it names.
Continued EndOf(const Reader& store);

/// The store that another one continues; nothing if it continues none.
std::optional<Continued> PreviousOf(const Reader& store);

/// The file of a store, in the folder of the file of another one; empty if there is none.
std::string FileBeside(const std::string& file, const std::string& guid);

}  // namespace Velora::Store
