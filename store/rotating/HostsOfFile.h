#pragma once

#include <string>

namespace Velora::Store {

class Reader;
class Writer;

/// A host that lives and has begun a session in a store, in words; empty if none is known.
std::string LivingHost(const Reader& store);

/// Notes in a store in a file that the hosts of all runs that did not finish have ended. Under another name of the
/// file nobody could find that out.
void NoteThatHostsEnded(Writer& store);

}  // namespace Velora::Store
