#include "serving/http/Server.h"

#include "serving/http/Target.h"
#include "store/values/Json.h"

#include <httplib.h>

#include <exception>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace Velora::Http {

namespace {

Answer ErrorAnswer(int status, std::string_view why) {
  Answer answer;
  answer.status = status;
  answer.body = R"({"error":)";
  Store::AppendText(answer.body, why);
  answer.body += "}\n";
  return answer;
}

std::string TypeOf(const Answer& answer) {
  const bool isText = answer.type.starts_with("text/") && answer.type.find(';') == std::string::npos;
  return isText ? answer.type + "; charset=utf-8" : answer.type;
}

/// @return false to break the connection off: what is missing must not look like the end.
bool WriteAll(const std::function<void(const Send&)>& write, httplib::DataSink& sink) {
  try {
    write([&sink](std::string_view piece) {
      if (!piece.empty() && !sink.write(piece.data(), piece.size())) {
        throw Store::Error("the client has left");
      }
    });
    sink.done();
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

void Give(Answer&& answer, httplib::Response& response) {
  response.status = answer.status;
  for (const auto& [name, value] : answer.headers) {
    response.set_header(name, value);
  }
  if (!answer.write) {
    response.set_content(answer.body, TypeOf(answer));
    return;
  }
  response.set_chunked_content_provider(
      TypeOf(answer),
      [write = std::move(answer.write)](std::size_t, httplib::DataSink& sink) { return WriteAll(write, sink); });
}

}  // namespace

class Server::Listener : public httplib::Server {
 public:
  Listener(Address wanted, Http::Handlers handlers) : address(std::move(wanted)), handlers(std::move(handlers)) {
    set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
      Give(AnswerTo(request), response);
      return HandlerResponse::Handled;
    });
    address.port = address.port == 0 ? bind_to_any_port(address.host)
                                     : (bind_to_port(address.host, address.port) ? address.port : -1);
    if (address.port < 0) {
      throw Store::Error("nothing can listen at " + wanted.InWords());
    }
  }

  const Address& Listens() const { return address; }

 private:
  Http::Answer AnswerTo(const httplib::Request& request) const {
    try {
      if (request.method != "GET" && request.method != "HEAD") {
        throw Refusal(405, "only GET and HEAD are answered");
      }
      Target target = ReadTarget(request.target);
      const auto handler = handlers.find(target.path);
      if (handler == handlers.end()) {
        throw Refusal(404, "there is no such path");
      }
      Question question(std::move(target.parameters));
      return handler->second.answer(question);
    } catch (const Refusal& refusal) {
      return ErrorAnswer(refusal.Status(), refusal.what());
    } catch (const std::exception& error) {
      return ErrorAnswer(500, error.what());
    }
  }

  Address address;
  const Http::Handlers handlers;
};

Server::Server(const Address& address, Handlers handlers)
    : listener(std::make_unique<Listener>(address, std::move(handlers))) {}

Server::~Server() = default;

const Address& Server::Listens() const { return listener->Listens(); }

void Server::Serve() {
  if (!listener->listen_after_bind()) {
    throw Store::Error("the server at " + Listens().InWords() + " cannot listen any longer");
  }
}

void Server::End() { listener->stop(); }

}  // namespace Velora::Http
