#pragma once

#include "serving/http/Client.h"
#include "serving/http/Connections.h"
#include "serving/http/Limits.h"

#include <chrono>

namespace Velora::Http {

/// A client behind a socket.
class SocketClient : public Client {
 public:
  /// Both have to outlive it.
  SocketClient(Connections::Connection& connection, const Limits& limits);

  void AwaitRequest() override;
  void BeginAnswer() override;
  std::size_t Receive(char* buffer, std::size_t size) override;
  bool Send(std::string_view bytes) override;

  /// Says that no more will be sent, and lets the client read what was sent: closing a socket of which not everything
  /// was received would take that from it.
  void Farewell();

 private:
  using Clock = std::chrono::steady_clock;

  bool IsThere() const;
  bool AwaitReader();

  Connections::Connection& connection;
  const Limits& limits;
  bool hasBegun = false;  // to send a request
  Clock::time_point receivesUntil;
  std::size_t sent = 0;                              // of this answer
  Clock::duration waited = Clock::duration::zero();  // for the client to take it
};

}  // namespace Velora::Http
