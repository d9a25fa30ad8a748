#pragma once

#include <string>
#include <tuple>

namespace Velora::Ts {

/// What somebody wants to be told of.
enum class AlertKind { Unreadable, Behind, Stopped, Silent, Outside };

/// "unreadable", "behind", "stopped", "silent" or "outside".
const char* NameOf(AlertKind kind);

/// Of what a condition is: there is one of each kind for a store, or for an instrument of it.
struct AlertSubject {
  AlertKind kind = AlertKind::Unreadable;
  int store = 0;           ///< Its number.
  std::string instrument;  ///< Empty for a condition of the whole store.
  std::string range;       ///< NAME=LOWEST..HIGHEST, for one kind.

  bool operator<(const AlertSubject& other) const {
    return std::tie(kind, store, instrument, range) < std::tie(other.kind, other.store, other.instrument, other.range);
  }
};

/// A condition at a look at the store.
struct AlertCondition {
  enum class Holds { No, Yes, NotKnown };

  AlertSubject subject;
  Holds holds = Holds::NotKnown;
  bool hasLasted = false;  ///< Whether it is one that only holds after a time: then it begins at once.

  // The facts, as they are stored; empty where there is none.
  std::string store, run, node, parameter, value;
  std::string since;  ///< A time.
  std::string words;  ///< A sentence for a person, about what is so at this look. It can have any character.
};

/// That a condition has begun, or has ended.
struct Alert {
  bool begins = true;
  AlertCondition condition;  ///< When it ended, the facts are of now; only `since` is of the beginning.
};

}  // namespace Velora::Ts
