// Stands in the place of the client library's functions, and calls them.

#include "Interruptions.h"

#include <dlfcn.h>
#include <sys/socket.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

Interruptions& TheInterruptions() {
  static Interruptions interruptions;
  return interruptions;
}

namespace {

template <typename Function>
Function Original(const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

// Asked over a connection of its own, which nothing happens to.
void AskAboutServerOf(PGconn* connection, const std::string& question) {
  const auto execute = Original<decltype(&PQexec)>("PQexec");
  const std::unique_ptr<PGconn, decltype(&PQfinish)> control(PQconnectdb("dbname=postgres"), &PQfinish);
  const std::string pid = std::to_string(PQbackendPID(connection));
  for (bool done = false; !done;) {
    const std::unique_ptr<PGresult, decltype(&PQclear)> answer(execute(control.get(), (question + pid + ")").c_str()),
                                                               &PQclear);
    done = PQresultStatus(answer.get()) != PGRES_TUPLES_OK || std::string_view(PQgetvalue(answer.get(), 0, 0)) == "t";
  }
}

void BeforeStatement(PGconn* connection) {
  if (++TheInterruptions().statements == TheInterruptions().endBefore) {
    AskAboutServerOf(connection, "SELECT pg_terminate_backend(pid, 5000) FROM pg_stat_activity WHERE pid IN (");
  }
}

}  // namespace

void LoseAnswer(PGconn* connection) {
  Original<decltype(&PQsendQuery)>("PQsendQuery")(connection, "COMMIT");
  PQflush(connection);
  AskAboutServerOf(connection, "SELECT state = 'idle' FROM pg_stat_activity WHERE pid IN (");
  shutdown(PQsocket(connection), SHUT_RDWR);
  while (PGresult* const result = PQgetResult(connection)) {
    PQclear(result);
  }
}

extern "C" [[gnu::visibility("default")]] int PQsendQuery(PGconn* connection, const char* statement) {
  BeforeStatement(connection);
  if (TheInterruptions().atCommit && std::string_view(statement) == "COMMIT") {
    std::exchange(TheInterruptions().atCommit, nullptr)(connection);
  }
  return Original<decltype(&PQsendQuery)>("PQsendQuery")(connection, statement);
}

extern "C" [[gnu::visibility("default")]] int PQsendQueryParams(PGconn* connection, const char* statement, int count,
                                                                const Oid* types, const char* const* values,
                                                                const int* lengths, const int* formats, int format) {
  BeforeStatement(connection);
  return Original<decltype(&PQsendQueryParams)>("PQsendQueryParams")(connection, statement, count, types, values,
                                                                     lengths, formats, format);
}

extern "C" [[gnu::visibility("default")]] int PQsendQueryPrepared(PGconn* connection, const char* name, int count,
                                                                  const char* const* values, const int* lengths,
                                                                  const int* formats, int format) {
  BeforeStatement(connection);
  return Original<decltype(&PQsendQueryPrepared)>("PQsendQueryPrepared")(connection, name, count, values, lengths,
                                                                         formats, format);
}
