#pragma once

#include "store/Error.h"
#include "store/database/Database.h"
#include "store/forwarding/Marks.h"

#include <memory>
#include <string>

namespace Velora::Store {

// Errors by which a caller acts. All others are worth another try in a while: NotReachable when the facility cannot be
// reached, or its connection was lost, or it has no room or time now; Error for a file that cannot be read now;
// NoStoreYet when no host has recorded yet.

/// What was asked for is refused until somebody does what the text says: the file is an older copy of itself, or its
/// folder was cloned; a program of another version is needed; the role lacks rights.
class Refused : public Error {
 public:
  using Error::Error;
};

/// Another forwarder of the same store is connected to the facility. It can be one that ended with the network: the
/// server notices that within half a minute.
class AnotherForwarder : public Error {
 public:
  using Error::Error;
};

class Pace;

/// Takes what is new in a store in a file to the store of a facility, on a server. It has no state beside what both
/// stores say: it can be ended at any moment, and another one goes on.
///
/// Hosts that record into the file do not wait for it: it reads one state after the other, each for as long as it takes
/// to read a portion, and writes nothing there. Hosts on the server wait no longer than for each other.
class Forwarder {
 public:
  /// Connects to nothing yet.
  /// @param file a store in a file.
  /// @param facility a store on a server.
  Forwarder(const Database& file, const Database& facility);
  Forwarder(const Forwarder&) = delete;
  Forwarder& operator=(const Forwarder&) = delete;
  ~Forwarder();

  /// What one portion took to the facility.
  struct Progress {
    long long rows = 0;    ///< Of all tables except `parameters`. 0: there was nothing new.
    long long events = 0;  ///< Of these, the events.
    Waiting left;          ///< What the file had beyond it, when the portion was read.
  };

  /// Sends one portion, in one transaction of the server: all that is new, or a part of it that is sent in a fraction
  /// of a second. When it returns, the portion is on the server's disk. Call it again at once as long as something is
  /// left, and a few times a second when nothing is: then it reads the file alone, and asks the facility every ten
  /// seconds, which also notes there that the instrument can be heard.
  ///
  /// Connects first if there is no connection. Then it takes the lock of the store, which it keeps as long as it is
  /// connected, and compares the last rows that the facility has with the file. After any error the connection is
  /// closed, and nothing of the portion is there, or all of it: the next call asks.
  /// @throws Refused, AnotherForwarder, or an error that is worth another try.
  Progress SendNext();

  /// How far the facility was when it last said so; all 0 before.
  const Marks& Reached() const;
  /// The guid of the store in the file then; empty before.
  const std::string& Guid() const;

 private:
  class Session;

  const Database file;
  const Database facility;
  const std::unique_ptr<Pace> pace;
  Marks reached;
  std::string guid;
  std::unique_ptr<Session> session;
};

}  // namespace Velora::Store
