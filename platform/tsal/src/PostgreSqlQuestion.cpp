#include "PostgreSqlQuestion.h"

#include <VeloraSystem/Sockets.h>

#include <libpq-fe.h>

#include <algorithm>
#include <memory>

namespace Quor::TolvaServices::Local {
namespace {

using Clock = std::chrono::steady_clock;

bool Await(PGconn* connection, bool toWrite, Clock::time_point end) {
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
  return left.count() > 0 && Velora::System::AwaitSocket(PQsocket(connection), toWrite, left);
}

bool Connect(PGconn* connection, Clock::time_point end) {
  PostgresPollingStatusType next =
      PQstatus(connection) == CONNECTION_BAD ? PGRES_POLLING_FAILED : PGRES_POLLING_WRITING;
  while ((next == PGRES_POLLING_READING || next == PGRES_POLLING_WRITING) &&
         Await(connection, next == PGRES_POLLING_WRITING, end)) {
    next = PQconnectPoll(connection);
  }
  return next == PGRES_POLLING_OK;
}

}  // namespace

std::string AskUntil(Clock::time_point end, const std::string& connection, const std::string& question,
                     const std::vector<std::string>& values) {
  const std::unique_ptr<PGconn, decltype(&PQfinish)> server(PQconnectStart(connection.c_str()), &PQfinish);
  std::vector<const char*> texts(values.size());
  std::transform(values.begin(), values.end(), texts.begin(), [](const std::string& value) { return value.c_str(); });
  if (!server || !Connect(server.get(), end) ||
      PQsendQueryParams(server.get(), question.c_str(), static_cast<int>(texts.size()), nullptr, texts.data(), nullptr,
                        nullptr, 0) != 1) {
    return "";
  }
  while (PQisBusy(server.get()) == 1) {
    if (!Await(server.get(), false, end) || PQconsumeInput(server.get()) != 1) {
      return "";
    }
  }
  const std::unique_ptr<PGresult, decltype(&PQclear)> answer(PQgetResult(server.get()), &PQclear);
  return PQntuples(answer.get()) == 1 ? PQgetvalue(answer.get(), 0, 0) : "";
}

}  // namespace Quor::TolvaServices::Local
