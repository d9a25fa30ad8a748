// The functions of PostgreSQL's client library that are used here. The library is loaded when the first of them is
// called: it brings twenty other libraries with it, and most programs ask for no server. To use another function, add
// its line; the compiler compares it with the library's declaration.

#include "store/database/ClientFunction.h"

#include <libpq-fe.h>

#include <cstddef>

namespace {

template <auto function, typename... Arguments>
auto Call(const char* name, Arguments... arguments) {
  static const auto found = reinterpret_cast<decltype(function)>(Velora::Store::FindClientFunction(name));
  return found(arguments...);
}

}  // namespace

extern "C" {
int PQbackendPID(const PGconn* c) { return Call<&PQbackendPID>(__func__, c); }
void PQclear(PGresult* r) { Call<&PQclear>(__func__, r); }
PQconninfoOption* PQconndefaults() { return Call<&PQconndefaults>(__func__); }
PostgresPollingStatusType PQconnectPoll(PGconn* c) { return Call<&PQconnectPoll>(__func__, c); }
PGconn* PQconnectStart(const char* address) { return Call<&PQconnectStart>(__func__, address); }
PQconninfoOption* PQconninfo(PGconn* c) { return Call<&PQconninfo>(__func__, c); }
void PQconninfoFree(PQconninfoOption* options) { Call<&PQconninfoFree>(__func__, options); }
PQconninfoOption* PQconninfoParse(const char* text, char** error) {
  return Call<&PQconninfoParse>(__func__, text, error);
}
int PQconsumeInput(PGconn* c) { return Call<&PQconsumeInput>(__func__, c); }
int PQenterPipelineMode(PGconn* c) { return Call<&PQenterPipelineMode>(__func__, c); }
char* PQerrorMessage(const PGconn* c) { return Call<&PQerrorMessage>(__func__, c); }
char* PQescapeLiteral(PGconn* c, const char* text, std::size_t size) {
  return Call<&PQescapeLiteral>(__func__, c, text, size);
}
int PQexitPipelineMode(PGconn* c) { return Call<&PQexitPipelineMode>(__func__, c); }
void PQfinish(PGconn* c) { Call<&PQfinish>(__func__, c); }
int PQflush(PGconn* c) { return Call<&PQflush>(__func__, c); }
char* PQfname(const PGresult* r, int column) { return Call<&PQfname>(__func__, r, column); }
void PQfreemem(void* memory) { Call<&PQfreemem>(__func__, memory); }
Oid PQftype(const PGresult* r, int column) { return Call<&PQftype>(__func__, r, column); }
int PQgetisnull(const PGresult* r, int row, int column) { return Call<&PQgetisnull>(__func__, r, row, column); }
int PQgetlength(const PGresult* r, int row, int column) { return Call<&PQgetlength>(__func__, r, row, column); }
PGresult* PQgetResult(PGconn* c) { return Call<&PQgetResult>(__func__, c); }
char* PQgetvalue(const PGresult* r, int row, int column) { return Call<&PQgetvalue>(__func__, r, row, column); }
char* PQhost(const PGconn* c) { return Call<&PQhost>(__func__, c); }
char* PQhostaddr(const PGconn* c) { return Call<&PQhostaddr>(__func__, c); }
int PQisBusy(PGconn* c) { return Call<&PQisBusy>(__func__, c); }
int PQnfields(const PGresult* r) { return Call<&PQnfields>(__func__, r); }
int PQntuples(const PGresult* r) { return Call<&PQntuples>(__func__, r); }
int PQpipelineSync(PGconn* c) { return Call<&PQpipelineSync>(__func__, c); }
char* PQport(const PGconn* c) { return Call<&PQport>(__func__, c); }
char* PQresultErrorField(const PGresult* r, int field) { return Call<&PQresultErrorField>(__func__, r, field); }
char* PQresultErrorMessage(const PGresult* r) { return Call<&PQresultErrorMessage>(__func__, r); }
ExecStatusType PQresultStatus(const PGresult* r) { return Call<&PQresultStatus>(__func__, r); }
int PQputCopyData(PGconn* c, const char* data, int size) { return Call<&PQputCopyData>(__func__, c, data, size); }
int PQputCopyEnd(PGconn* c, const char* error) { return Call<&PQputCopyEnd>(__func__, c, error); }
int PQsendPrepare(PGconn* c, const char* name, const char* statement, int count, const Oid* types) {
  return Call<&PQsendPrepare>(__func__, c, name, statement, count, types);
}
int PQsendQuery(PGconn* c, const char* statements) { return Call<&PQsendQuery>(__func__, c, statements); }
int PQsendQueryParams(PGconn* c, const char* statement, int count, const Oid* types, const char* const* values,
                      const int* lengths, const int* formats, int format) {
  return Call<&PQsendQueryParams>(__func__, c, statement, count, types, values, lengths, formats, format);
}
int PQsendQueryPrepared(PGconn* c, const char* name, int count, const char* const* values, const int* lengths,
                        const int* formats, int format) {
  return Call<&PQsendQueryPrepared>(__func__, c, name, count, values, lengths, formats, format);
}
PQnoticeReceiver PQsetNoticeReceiver(PGconn* c, PQnoticeReceiver receiver, void* given) {
  return Call<&PQsetNoticeReceiver>(__func__, c, receiver, given);
}
int PQsetnonblocking(PGconn* c, int yes) { return Call<&PQsetnonblocking>(__func__, c, yes); }
int PQsocket(const PGconn* c) { return Call<&PQsocket>(__func__, c); }
ConnStatusType PQstatus(const PGconn* c) { return Call<&PQstatus>(__func__, c); }
PGTransactionStatusType PQtransactionStatus(const PGconn* c) { return Call<&PQtransactionStatus>(__func__, c); }
}
