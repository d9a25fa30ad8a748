#pragma once

#include <functional>

/// What happens to the statements that this process sends to a server through PostgreSQL's client library.
struct Interruptions {
  int endBefore = 0;        ///< The connection is ended before the statement of this number, from 1 on; 0: none.
  bool loseCommit = false;  ///< The answer to the next COMMIT is lost with its connection, once it is done.
  std::function<void()> afterCrash;  ///< Happens once, in place of a COMMIT: its server process is killed before.
  int statements = 0;                ///< How many were sent.
};

Interruptions& TheInterruptions();
