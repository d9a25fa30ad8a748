#pragma once

#include "store/settings/Settings.h"
#include "watching/Now.h"

#include <map>
#include <optional>
#include <string>

namespace Velora::Store {
class Reader;
}

namespace Velora::Ts {

/// How far a store was forwarded, from what its forwarder has noted: at least once a minute while it is at work. The
/// facility itself is not asked.
/// @param facility to which TSAL.config says that the store is forwarded.
std::optional<ForwardingNow> ForwardingOf(const Store::Reader& store, const Store::Database& facility);

/// In the store of a facility: the forwarder of each instrument, by the name of the instrument; of several, the one
/// that was heard last.
std::map<std::string, ForwarderNow> ForwardersOf(const Store::Reader& store);

}  // namespace Velora::Ts
