#pragma once

#include "serving/http/Address.h"
#include "serving/http/Handler.h"
#include "serving/http/Limits.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Velora::Http {

/// Takes a line for the person who runs the server.
using Complaint = std::function<void(std::string_view line)>;

/// A server of answers to GET and HEAD requests. Each connection has a thread.
class Server {
 public:
  Server() = default;
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;
  virtual ~Server() = default;

  /// Where it listens, with the port that it found.
  virtual const Address& Listens() const = 0;
  /// Answers requests until End() is called, and every answer has ended. To be called once.
  /// @throws Error when it cannot listen any longer.
  virtual void Serve() = 0;
  /// Closes all connections, so that Serve() ends. Any thread may call it, also before Serve().
  virtual void End() = 0;
};

/// Begins to listen.
/// @param names further names under which it is reached, such as that of a proxy. A request for any other is refused.
/// @param complain is told why a connection was ended, such as for lack of memory. Several threads call it.
/// @throws Error when that is not possible.
std::unique_ptr<Server> Listen(
    const Address& address, const std::vector<std::string>& names, Handlers handlers, const Limits& limits = {},
    Complaint complain = [](std::string_view) {});

}  // namespace Velora::Http
