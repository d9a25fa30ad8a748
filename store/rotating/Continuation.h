#pragma once

#include <optional>
#include <string>

namespace Velora::Store {

class Reader;
struct Continued;

/// The guid of a store, and the hash of its newest seal: what the store that continues it names.
/// @param origin the number of the store whose chain it is.
Continued EndOf(const Reader& store, long long origin);

/// The store that another one continues; nothing if it continues none.
std::optional<Continued> PreviousOf(const Reader& store, long long origin);

/// The file of a store, in the folder of the file of another one; empty if there is none.
std::string FileBeside(const std::string& file, const std::string& guid);

/// How the chain of a store leads on from the one that it continues.
struct Link {
  std::string words;             ///< Empty if it continues none.
  std::string finding = "";      ///< What is wrong; empty for nothing.
  std::string notCompared = "";  ///< What could not be compared; empty for nothing.
};
/// Looks for the store that another one continues in the same database, or in the folder of its file.
Link LinkOf(const Reader& store, long long origin);

}  // namespace Velora::Store
