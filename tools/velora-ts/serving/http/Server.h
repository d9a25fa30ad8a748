#pragma once

#include "serving/http/Address.h"
#include "serving/http/Handler.h"

#include <memory>

namespace Velora::Http {

/// A server of answers to GET and HEAD requests, on this thread and others.
class Server {
 public:
  /// Begins to listen.
  /// @throws Error when that is not possible.
  Server(const Address& address, Handlers handlers);
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;
  ~Server();

  /// Where it listens, with the port that it found.
  const Address& Listens() const;
  /// Answers requests until End() is called. To be called once.
  /// @throws Error when it cannot listen any longer.
  void Serve();
  /// Ends every answer, and Serve(). Any thread may call it.
  void End();

 private:
  class Listener;
  const std::unique_ptr<Listener> listener;
};

}  // namespace Velora::Http
