#pragma once

#include "serving/http/Client.h"
#include "serving/http/Head.h"

#include <optional>
#include <string>

namespace Velora::Http {

/// Takes from a client the heads of its requests, one after the other.
class HeadReader {
 public:
  /// @param client has to outlive it.
  explicit HeadReader(Client& client) : client(client) {}

  /// @return nothing when the client has left, or is too slow.
  /// @throws Refusal
  std::optional<Head> Next();

 private:
  bool ReceiveHead();

  Client& client;
  std::string received;    // and not yet read
  std::size_t length = 0;  // of the head at its start
};

}  // namespace Velora::Http
