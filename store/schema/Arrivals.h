#pragma once

#include "store/schema/Table.h"

namespace Velora::Store {

/// The table `arrivals` contains no records. It says when the program that takes in the rows of another store was last
/// in contact with this one, and what waited there. It is neither copied nor sealed. On a server, hosts write it by the
/// function note_arrival(), which enters the server's time.
const Table& Arrivals();

}  // namespace Velora::Store
