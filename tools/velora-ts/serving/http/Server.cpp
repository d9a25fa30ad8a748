#include "serving/http/Server.h"

#include "serving/http/ConnectionThreads.h"
#include "serving/http/Responder.h"
#include "serving/http/SocketClient.h"
#include "store/Error.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <exception>
#include <functional>
#include <string>
#include <system_error>
#include <utility>

namespace Velora::Http {

namespace {

constexpr std::chrono::milliseconds betweenLooks(200);  // whether it has been ended
constexpr int backlog = 512;  // connections that the system keeps until they are accepted; the library asks for 5

// Two servers must not share a port. A port can be taken again at once, while connections of an ended server linger.
void SetOptions(socket_t socket) {
#ifdef _WIN32
  const int option = SO_EXCLUSIVEADDRUSE;
#else
  const int option = SO_REUSEADDR;
#endif
  const int yes = 1;
  setsockopt(socket, SOL_SOCKET, option, reinterpret_cast<const char*>(&yes), sizeof yes);
}

void Close(socket_t socket) {
#ifdef _WIN32
  closesocket(socket);
#else
  close(socket);
#endif
}

class Listener : public Http::Server, private Responder {
 public:
  Listener(const Address& wanted, const std::vector<std::string>& names, Http::Handlers handlers, const Limits& limits,
           Complaint complain)
      : Responder(Access(wanted, names), std::move(handlers), limits),
        limits(limits),
        complain(std::move(complain)),
        address(wanted),
        connections(limits.stalled) {
    new_task_queue = [this] { return new Threads(*this); };
    set_socket_options(&SetOptions);
    set_idle_interval(betweenLooks);
    Bind();
  }

  ~Listener() override { StopListening(); }

  const Address& Listens() const override { return address; }

  void Serve() override {
    while (!ended) {
      static_cast<void>(listen_after_bind());
      if (!ended) {  // the library gives up when the system fails to hand over one connection
        Bind();
      }
    }
  }

  void End() override {
    ended = true;
    EndWaiting();
  }

 private:
  // The library may use its socket at any moment, so it is closed on the thread of the library.
  class Threads : public ConnectionThreads {
   public:
    explicit Threads(Listener& listener)
        : ConnectionThreads(listener.connections, listener.limits.connections), listener(listener) {}

    void on_idle() override {
      if (listener.ended) {
        listener.StopListening();
      }
    }
    void enqueue(std::function<void()> answer) override {
      ConnectionThreads::enqueue(std::move(answer));
      on_idle();
    }

   private:
    Listener& listener;
  };

  void StopListening() {
    const socket_t socket = svr_sock_.exchange(INVALID_SOCKET);
    if (socket != INVALID_SOCKET) {
      Close(socket);
    }
  }

  void Bind() {
    errno = 0;
    const int port = address.port == 0                          ? bind_to_any_port(address.host)
                     : bind_to_port(address.host, address.port) ? address.port
                                                                : -1;
    if (port < 0) {
      const std::string why = errno == 0 ? "" : ": " + std::generic_category().message(errno);
      throw Store::Error("the server cannot listen at " + address.InWords() + why);
    }
    address.port = port;
    ::listen(svr_sock_, backlog);
  }

  bool process_and_close_socket(socket_t socket) override {
    try {
      Converse(socket);
    } catch (const std::exception& reason) {
      Tell(reason);
    }
    Close(socket);
    return true;
  }

  void Converse(socket_t socket) {
    Connections::Connection connection(connections, socket);
    SocketClient client(connection, limits);
    HeadReader heads(client);
    while (!ended && AnswerNext(heads, client)) {
    }
    client.Farewell();
  }

  void Tell(const std::exception& reason) const {
    try {
      complain(std::string("a connection was ended: ") + reason.what());
    } catch (const std::exception&) {  // there is no memory for it either
    }
  }

  const Limits limits;
  const Complaint complain;
  Address address;
  Connections connections;
  std::atomic<bool> ended = false;
};

}  // namespace

std::unique_ptr<Server> Listen(const Address& address, const std::vector<std::string>& names, Handlers handlers,
                               const Limits& limits, Complaint complain) {
  return std::make_unique<Listener>(address, names, std::move(handlers), limits, std::move(complain));
}

}  // namespace Velora::Http
