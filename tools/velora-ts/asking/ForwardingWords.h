#pragma once

#include <string>
#include <vector>

namespace Velora::Store {
class Reader;
struct Database;
}  // namespace Velora::Store

namespace Velora::Ts {

// How far forwarding is, for a person: lines without an end. Those that begin with "warning: " need somebody.

/// At the instrument: what waits there, what the facility says, and whether a forwarder is at work. A facility that
/// cannot be reached is a line, and no error.
/// @throws Error when the store cannot be read.
std::vector<std::string> ForwardingInWords(const Store::Database& store, const Store::Database& facility);

/// At the facility: a line for each store that is forwarded to it.
std::vector<std::string> ContactsInWords(const Store::Reader& store);
/// At the facility: a line for each store that was forwarded and has been silent for minutes.
/// @param instrument only stores of this one; empty for all.
std::vector<std::string> SilenceInWords(const Store::Reader& store, const std::string& instrument);

}  // namespace Velora::Ts
