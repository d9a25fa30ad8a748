#include "store/database/PostgreSqlConnection.h"

#include "store/database/PostgreSqlAddress.h"
#include "store/database/PostgreSqlCursor.h"

#include <VeloraSystem/Sockets.h>

#include <algorithm>
#include <utility>

namespace Velora::Store {
namespace {

// The client library can have a part of a result in its buffer, of which the socket does not know; so it is polled.
constexpr std::chrono::milliseconds longestLook{100};

constexpr std::size_t mostUnread = 100;  // so that statements do not fill the memory while the server is at work

// Without the severity that precedes the message.
std::string OnOneLine(std::string_view rest) {
  static constexpr std::string_view space = " \t\n\v\f\r";
  rest = rest.substr(0, rest.find_last_not_of(" \n") + 1);
  if (rest.starts_with("ERROR: ") || rest.starts_with("FATAL: ") || rest.starts_with("PANIC: ")) {
    rest.remove_prefix(rest.find_first_not_of(' ', rest.find(' ')));
  }
  std::string line;
  for (std::size_t end = rest.find('\n'); end != std::string_view::npos; end = rest.find('\n')) {
    line.append(rest.substr(0, rest.find_last_not_of(space, end) + 1)).append("; ");
    rest.remove_prefix(std::min(rest.find_first_not_of(space, end), rest.size()));
  }
  return line.append(rest);
}

std::string TextOf(const char* value) { return value == nullptr ? "" : value; }

void NoteWarning(void* warned, const PGresult* notice) {
  *static_cast<bool*>(warned) |= TextOf(PQresultErrorField(notice, PG_DIAG_SEVERITY_NONLOCALIZED)) == "WARNING";
}

std::vector<const char*> PointersTo(const std::vector<PostgreSqlConnection::Value>& values) {
  std::vector<const char*> texts(values.size());
  std::transform(values.begin(), values.end(), texts.begin(),
                 [](const auto& value) { return value ? value->c_str() : nullptr; });
  return texts;
}

}  // namespace

PostgreSqlConnection::PostgreSqlConnection(const std::string& address, std::optional<Clock::time_point> when)
    : Connection(NameOfDatabaseAt(address)), uri(UriWithTimeouts(address)) {
  PostgreSqlConnecting connecting = ConnectToOneOf(uri, when ? std::optional(*when - Clock::now()) : std::nullopt);
  handle = std::move(connecting.handle);
  timeToConnect = connecting.took;
  if (!handle) {
    Fail(OnOneLine(connecting.whyNot));
  }
  LimitTo(when);
  PQsetNoticeReceiver(handle.get(), &NoteWarning, &warned);  // instead of writing to the host's standard error
  PQsetnonblocking(handle.get(), 1);
}

std::unique_ptr<Cursor> PostgreSqlConnection::Prepare(const std::string& statement) {
  return std::make_unique<PostgreSqlStream>(*this, "c" + std::to_string(++cursors), statement);
}

std::unique_ptr<Cursor> PostgreSqlConnection::PrepareShort(const std::string& statement) {
  return std::make_unique<PostgreSqlStatement>(*this, statement);
}

PostgreSqlConnection::Answer PostgreSqlConnection::Ask(const std::string& script) {
  Settle();
  Expect(PQsendQuery(handle.get(), (std::exchange(closing, "") + script).c_str()));
  return TakeAnswer();
}

PostgreSqlConnection::Answer PostgreSqlConnection::Ask(const std::string& statement, const std::vector<Value>& values) {
  Answer answer(nullptr, &PQclear);
  SendKept(statement, values, [&answer](Answer received) { answer = std::move(received); });
  Settle();
  return answer;
}

void PostgreSqlConnection::Send(const std::string& statement, const std::vector<Value>& values, Receiver receive) {
  StartPipeline();
  Expect(PQsendQueryParams(handle.get(), statement.c_str(), static_cast<int>(values.size()), nullptr,
                           PointersTo(values).data(), nullptr, nullptr, 0));
  sent.push_back({Sent::What::Statement, std::move(receive)});
}

void PostgreSqlConnection::SendKept(const std::string& statement, const std::vector<Value>& values, Receiver receive) {
  StartPipeline();
  const int count = static_cast<int>(values.size());
  Expect(PQsendQueryPrepared(handle.get(), Prepared(statement, count).c_str(), count, PointersTo(values).data(),
                             nullptr, nullptr, 0));
  sent.push_back({Sent::What::Statement, std::move(receive)});
}

void PostgreSqlConnection::RunKept(const std::string& statement, const std::vector<Value>& values) {
  SendKept(statement, values);
  if (!defersRuns || sent.size() >= mostUnread) {
    Settle();
  }
}

void PostgreSqlConnection::SendTrial(const std::string& statement, Receiver receive) {
  EndPart();
  Send(statement, {}, std::move(receive));
  sent.back().what = Sent::What::Trial;
  EndPart();
}

void PostgreSqlConnection::Settle() {
  EndPart();
  Answer failed(nullptr, &PQclear);
  while (!sent.empty()) {
    Answer answer = Receive();
    if (!failed) {
      failed = std::move(answer);
    }
  }
  PQexitPipelineMode(handle.get());
  if (failed) {
    Expect(failed.get());
  }
}

void PostgreSqlConnection::StartPipeline() {
  if (sent.empty()) {
    Expect(PQenterPipelineMode(handle.get()));
  }
}

void PostgreSqlConnection::EndPart() {
  if (!sent.empty() && sent.back().what != Sent::What::EndOfPart) {
    Expect(PQpipelineSync(handle.get()));
    sent.push_back({Sent::What::EndOfPart});
  }
}

// Each name is used once: if the server skips the preparation, the statement is prepared again under another name.
std::string PostgreSqlConnection::Prepared(const std::string& statement, int values) {
  if (const auto known = prepared.find(statement); known != prepared.end()) {
    return known->second;
  }
  const std::string name = "s" + std::to_string(++preparations);
  Expect(PQsendPrepare(handle.get(), name.c_str(), statement.c_str(), values, nullptr));
  sent.push_back({Sent::What::Preparation, nullptr, statement});
  return prepared.emplace(statement, name).first->second;
}

PostgreSqlConnection::Answer PostgreSqlConnection::Receive() {
  Answer answer = TakeResult();
  const Sent first = std::move(sent.front());
  sent.pop_front();
  const ExecStatusType status = PQresultStatus(answer.get());
  if (status != PGRES_FATAL_ERROR && status != PGRES_PIPELINE_ABORTED) {
    if (first.receive) {
      first.receive(std::move(answer));
    }
    return {nullptr, &PQclear};
  }
  if (first.what == Sent::What::Preparation) {
    prepared.erase(first.statement);
  }
  if (first.what == Sent::What::Trial || status == PGRES_PIPELINE_ABORTED) {
    return {nullptr, &PQclear};
  }
  return answer;
}

void PostgreSqlConnection::BeginSending(const std::string& statement) { Ask(statement); }

// Waits until all is sent, so that the rows for a slow server do not fill the memory.
void PostgreSqlConnection::Send(std::string_view rows) {
  ExpectSending(PQputCopyData(handle.get(), rows.data(), static_cast<int>(rows.size())));
  AwaitAnswer();
}

void PostgreSqlConnection::EndSending() {
  ExpectSending(PQputCopyEnd(handle.get(), nullptr));
  TakeAnswer();
}

void PostgreSqlConnection::ExpectSending(int accepted) {
  if (accepted != 1) {
    TakeAnswer();  // with the error that ended the statement
    Expect(accepted);
  }
}

void PostgreSqlConnection::Expect(int accepted) {
  if (accepted != 1) {
    Fail(OnOneLine(PQerrorMessage(handle.get())));
  }
}

void PostgreSqlConnection::Expect(const PGresult* answer) {
  if (PQresultStatus(answer) == PGRES_FATAL_ERROR) {
    Fail(OnOneLine(PQresultErrorMessage(answer)), TextOf(PQresultErrorField(answer, PG_DIAG_SQLSTATE)));
  }
}

PostgreSqlConnection::Answer PostgreSqlConnection::TakeAnswer() {
  Answer answer = TakeResult();
  Expect(answer.get());
  return answer;
}

// The results of a statement end with an empty one, except when the server expects rows, and at the end of a part.
PostgreSqlConnection::Answer PostgreSqlConnection::TakeResult() {
  Answer answer(nullptr, &PQclear);
  while (AwaitAnswer()) {
    Answer next(PQgetResult(handle.get()), &PQclear);
    if (!next) {
      break;
    }
    if (!answer || PQresultStatus(answer.get()) != PGRES_FATAL_ERROR) {
      answer = std::move(next);
    }
    if (const ExecStatusType status = PQresultStatus(answer.get());
        status == PGRES_COPY_IN || status == PGRES_PIPELINE_SYNC) {
      break;
    }
  }
  if (IsLost() || !answer) {
    Fail(silent ? "it gave no answer in time" : OnOneLine(PQerrorMessage(handle.get())));
  }
  return answer;
}

bool PostgreSqlConnection::AwaitAnswer() {
  for (;;) {
    const int unsent = PQflush(handle.get());
    if (unsent == 0 && PQisBusy(handle.get()) == 0) {
      return true;
    }
    if (unsent < 0 || silent) {
      return !silent;  // the server's last message must still be read
    }
    if (AwaitSocket(unsent == 1) && PQconsumeInput(handle.get()) != 1) {
      return true;
    }
  }
}

// After the time limit, the connection is closed in both directions, so that the server gives up too.
bool PostgreSqlConnection::AwaitSocket(bool toWrite) {
  const auto left = end ? std::chrono::duration_cast<std::chrono::milliseconds>(*end - Clock::now()) : longestLook;
  if (left.count() <= 0) {
    silent = true;
    System::ShutDownSocket(PQsocket(handle.get()));
    return false;
  }
  System::AwaitSocket(PQsocket(handle.get()), toWrite, std::min(left, longestLook));
  return true;
}

std::string PostgreSqlConnection::Quoted(std::string_view text) const {
  const std::unique_ptr<char, decltype(&PQfreemem)> quoted(PQescapeLiteral(handle.get(), text.data(), text.size()),
                                                           &PQfreemem);
  if (!quoted) {
    throw Error("TS database '" + Name() + "' cannot search for a text that is not UTF-8");
  }
  return quoted.get();
}

void PostgreSqlConnection::Close(const std::string& cursor) noexcept {
  try {
    closing += "CLOSE " + cursor + "; ";
  } catch (...) {
    // If this fails, the cursor stays open until the transaction ends.
  }
}

std::string PostgreSqlConnection::ServerUri() const {
  return UriOfServer(uri,
                     {TextOf(PQhost(handle.get())), TextOf(PQhostaddr(handle.get())), TextOf(PQport(handle.get()))});
}

void PostgreSqlConnection::Fail(const std::string& reason, const std::string& state) { Raise(reason, state); }

PostgreSqlConnection ConnectToServer(const std::string& address) {
  try {
    return PostgreSqlConnection(address);
  } catch (const DatabaseError& error) {
    throw NotReachable("TS database '" + NameOfDatabaseAt(address) + "' cannot be reached: " + error.reason +
                       "; expected a running server that accepts this user");
  }
}

}  // namespace Velora::Store
