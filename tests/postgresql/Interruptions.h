#pragma once

#include <libpq-fe.h>

#include <functional>

/// What happens to the statements that this process sends to a server through PostgreSQL's client library.
struct Interruptions {
  int endBefore = 0;  ///< The connection is ended before the statement of this number, from 1 on; 0: none.
  std::function<void(PGconn* connection)> atCommit;  ///< Happens once, before the next COMMIT is sent.
  int statements = 0;                                ///< How many were sent.
};

/// Commits, and loses the answer with the connection.
void LoseAnswer(PGconn* connection);

Interruptions& TheInterruptions();
