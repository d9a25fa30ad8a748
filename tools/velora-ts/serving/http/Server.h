#pragma once

#include "serving/http/Address.h"
#include "serving/http/Handler.h"
#include "serving/http/Limits.h"

#include <memory>
#include <string>
#include <vector>

namespace Velora::Http {

/// A server of answers to GET and HEAD requests. Each connection has a thread.
class Server {
 public:
  /// Begins to listen.
  /// @param names further names under which it is reached, such as that of a proxy. A request for any other is refused.
  /// @throws Error when that is not possible.
  Server(const Address& address, const std::vector<std::string>& names, Handlers handlers, const Limits& limits = {});
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;
  ~Server();

  /// Where it listens, with the port that it found.
  const Address& Listens() const;
  /// Answers requests until End() is called, and every answer has ended. To be called once.
  /// @throws Error when it cannot listen any longer.
  void Serve();
  /// Closes all connections, so that Serve() ends. Any thread may call it, also before Serve().
  void End();

 private:
  class Listener;
  const std::unique_ptr<Listener> listener;
};

}  // namespace Velora::Http
