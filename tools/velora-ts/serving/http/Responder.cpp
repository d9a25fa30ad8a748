#include "serving/http/Responder.h"

#include "serving/http/Target.h"

#include <exception>
#include <string>
#include <utility>

namespace Velora::Http {

namespace {

// What the library is to write on this thread: it hands its handlers no more than the request.
thread_local const Exchange* current = nullptr;

/// What the library reads in place of the request, of which it needs no more.
class RequestForLibrary : public httplib::Stream {
 public:
  explicit RequestForLibrary(const Exchange& exchange) : client(exchange.client) {
    text = (exchange.head.method == "HEAD" ? "HEAD" : "GET") + std::string(" / HTTP/1.1\r\n") +
           (exchange.head.takesGzip ? "Accept-Encoding: gzip\r\n" : "") + "\r\n";
  }

  bool is_readable() const override { return true; }
  bool is_writable() const override { return true; }
  ssize_t read(char* buffer, size_t size) override {
    const std::size_t count = text.copy(buffer, size);
    text.erase(0, count);
    return static_cast<ssize_t>(count);
  }
  ssize_t write(const char* bytes, size_t size) override {
    return size == 0 || client.Send({bytes, size}) ? static_cast<ssize_t>(size) : -1;
  }
  void get_remote_ip_and_port(std::string&, int&) const override {}
  void get_local_ip_and_port(std::string&, int&) const override {}
  socket_t socket() const override { return 0; }

 private:
  Client& client;
  std::string text;
};

/// Takes away what the library says of itself, and is not so.
void Correct(httplib::Response& response) {
  response.headers.erase("Accept-Ranges");
  response.headers.erase("Keep-Alive");
  if (response.status == 304) {
    response.headers.erase("Content-Length");
  }
}

}  // namespace

Responder::Responder(Access access, Http::Handlers handlers, const Limits& limits)
    : access(std::move(access)),
      turn(limits.turn),
      handlers(std::move(handlers)),
      heavy(limits.heavy, limits.waiting),
      live(limits.live, 0) {
  set_pre_routing_handler([](const httplib::Request&, httplib::Response& response) {
    current->Give(response);
    return HandlerResponse::Handled;
  });
  set_post_routing_handler([](const httplib::Request&, httplib::Response& response) { Correct(response); });
}

bool Responder::AnswerNext(HeadReader& heads, Client& client) {
  Exchange exchange{client};
  try {
    std::optional<Head> head = heads.Next();
    if (!head) {
      return false;
    }
    exchange.head = std::move(*head);
    client.BeginAnswer();
    Decide(exchange);
    exchange.LeaveOutWhatIsKnown();
  } catch (const Refusal& refusal) {
    exchange.answer = ErrorAnswer(refusal.Status(), refusal.what());
  } catch (const std::exception& error) {
    exchange.answer = ErrorAnswer(500, error.what());
  }
  return Write(exchange) && exchange.head.keepsOpen;
}

void Responder::Decide(Exchange& exchange) {
  access.Check(exchange.head);
  if (exchange.head.method != "GET" && exchange.head.method != "HEAD") {
    throw Refusal(405, "the server only answers GET and HEAD");
  }
  Target target = ReadTarget(exchange.head.target);
  const auto handler = handlers.find(target.path);
  if (handler == handlers.end()) {
    throw Refusal(404, "there is no such path");
  }
  exchange.weight = handler->second.weight;
  TakePlace(exchange);
  Question question(std::move(target.parameters));
  exchange.answer = handler->second.answer(question);
}

void Responder::TakePlace(Exchange& exchange) {
  switch (exchange.weight) {
    case Weight::Light:
      break;
    case Weight::Heavy:
      exchange.place.emplace(heavy, turn);
      break;
    case Weight::Live:
      exchange.place.emplace(live, Limits::Time(0));
      break;
  }
}

bool Responder::Write(Exchange& exchange) {
  current = &exchange;
  RequestForLibrary request(exchange);
  bool closed = false;
  return process_request(request, !exchange.head.keepsOpen, closed, {});
}

void Responder::EndWaiting() {
  heavy.End();
  live.End();
}

}  // namespace Velora::Http
