#pragma once

#include <string>
#include <vector>

namespace Velora::Store {

class Reader;

/// What a store knows of the forwarder of another store, whose rows it takes in. Times are stored ones.
struct Contact {
  std::string guid;          ///< Of the other store.
  std::string instrument;    ///< Of its newest session.
  std::string heardAt;       ///< When the forwarder was last heard, by the clock of this store.
  double silence = 0;        ///< The seconds since then, by the same clock.
  long long waiting = 0;     ///< How many rows waited at the instrument then.
  std::string waitingSince;  ///< The time of the oldest of them; empty if there was none.
  bool isConnected = false;  ///< Whether it is connected now.
  bool isContinued = false;  ///< Whether the instrument has begun another store since.

  /// Whether somebody should look after it: it was not heard for minutes, though it speaks every ten seconds.
  bool IsSilent() const;
};

/// All that are known, in the order in which they came; none if this role may not read them.
std::vector<Contact> Contacts(const Reader& store);

}  // namespace Velora::Store
