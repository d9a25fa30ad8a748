#pragma once

#include <array>
#include <string>

namespace Velora::Store {

class Writer;

/// Inserts the row of a session, within a transaction. @return the key of the row.
long long InsertSession(Writer& store, const std::string& guid, const std::string& instrument,
                        const std::array<std::string, 3>& texts);

}  // namespace Velora::Store
