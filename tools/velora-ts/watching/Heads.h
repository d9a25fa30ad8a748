#pragma once

#include <string>
#include <vector>

namespace Velora::Store {
class Reader;
}

namespace Velora::Ts {

/// How far one of the stores in a store has come: its highest keys, 0 for none.
struct Head {
  long long store = 1;  ///< Its number.
  std::string guid;
  long long sessions = 0, executions = 0, statuses = 0, events = 0;
  bool operator==(const Head&) const = default;
};

/// What tells whether something was recorded: it costs the same for any number of rows.
struct Heads {
  int version = 0;           ///< Of the schema.
  std::string firstSession;  ///< The guid of the first session; empty if there is none.
  std::vector<Head> stores;  ///< The store itself first.
  bool operator==(const Heads&) const = default;
};

/// @param before what was found at an earlier look, which says where to look for more; empty for none.
Heads HeadsOf(const Store::Reader& store, const Heads& before);

/// Whether one state of a store can follow another with nothing but further rows, and not too many of them.
bool Follows(const Heads& later, const Heads& before);

}  // namespace Velora::Ts
